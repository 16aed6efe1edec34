#include "Support/HostileTexts.h"

using namespace Qt::StringLiterals;

const QStringList &HostileTexts::all()
{
    static const QStringList texts{
        u""_s,
        u" "_s,
        u"-"_s,
        u"--"_s,
        u"-rf"_s,
        u"--privileged"_s,
        u"-f\u00a0"_s,
        u"a b"_s,
        u"it's"_s,
        u"'; touch owned; '"_s,
        u"\"$(touch owned)\" `touch owned` ${IFS}"_s,
        u"a;b|c&d>e<f*?[g]~#!\\"_s,
        u"%s%n%d\\0\\n"_s,
        u"one\ntwo"_s,
        u"\n"_s,
        u"one\rtwo\ttab"_s,
        u"../../etc/passwd"_s,
        u"/"_s,
        u"<b>bold</b>"_s,
        u"<a href=\"http://127.0.0.1:%1/\">click</a>"_s,
        u"<img src=\"http://127.0.0.1:%1/a.png\">"_s,
        u"<!DOCTYPE html><html><body><h1>big</h1></body></html>"_s,
        u"&lt;&amp;&#0;&copy;"_s,
        u"&File"_s,
        u"\u001b[31mred\u001b]0;title\u0007\u009b2J"_s,
        u"\b\b\bback\u007f\u0085\u0001"_s,
        u"abc\u202egpj.exe\u2066x\u2069"_s,
        u"\u200b\u200d\u2060\ufeff"_s,
        u"zero\u0000end"_s,
        u"e\u0301\u0308\u0323\u0327"_s,
        u"a"_s + u"\u0301"_s.repeated(200),
        u"\U0001F468\u200d\U0001F469\u200d\U0001F467 \U0001F1E9\U0001F1EA"_s,
        u"\u05e9\u05dc\u05d5\u05dd \u0645\u0631\u062d\u0628\u0627"_s,
        u"\uff21\u4e2d\u6587\U00020000\U0010ffff"_s,
        u"\u2028line\u2029paragraph"_s,
        u"\ufffd\ufffe"_s,
        u"\u212a\u0130\u017f"_s, // letters that letter case makes of others
        u"\u0661\u0967\uff11"_s, // digits of other scripts
        u"long"_s.repeated(300),
        u"word "_s.repeated(300),
        u"W\u4e2d"_s.repeated(600),
    };
    return texts;
}

QString HostileTexts::text()
{
    const auto one = [this] { return all()[below(static_cast<int>(all().size()))]; };
    return below(3) > 0 ? one() : one() + one() + one();
}

QString HostileTexts::nearly(QStringView characters, int longest)
{
    QString result;
    for (int length = below(longest + 1); length > 0; --length)
        result += characters[below(static_cast<int>(characters.size()))];
    if (below(2) == 0)
        return result;
    return result.insert(below(static_cast<int>(result.size()) + 1), text());
}

#pragma once

#include <QRegularExpression>

/// A regular expression that a text has to match from its first character to its last.
class WholePattern
{
public:
    explicit WholePattern(const QString &pattern) : m_expression(QRegularExpression::anchoredPattern(pattern)) {}

    bool matches(const QString &text) const { return match(text).hasMatch(); }
    QRegularExpressionMatch match(const QString &text) const { return m_expression.match(text); }

private:
    QRegularExpression m_expression;
};

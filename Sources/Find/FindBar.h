#pragma once

// The bar for finding in an output pane: the field for what is looked for, how often it occurs, the steps to the
// matches before and after, and whether case matters. It looks for nothing itself.

#include "Text/TextPattern.h"

#include <QTimer>
#include <QWidget>

#include <cstdint>

class PlainLabel;
class QCheckBox;
class QLineEdit;

class FindBar : public QWidget
{
    Q_OBJECT

public:
    /// UTF-16 units that the field takes; of a longer text the beginning.
    static constexpr int longestText = 10'000;

    /// The focus proxy is the field.
    explicit FindBar(QWidget *parent);

    QString text() const;
    /// What to look for; empty while the field is.
    TextPattern pattern() const;
    /// Puts a text into the field, which patternChanged does not tell.
    void setText(const QString &text);
    /// Selects all of the field's text, so that typing replaces it.
    void selectText();

    /// A search goes on; said in the bar when it takes longer than a moment.
    void showSearching();
    /// The search is over: the match of that number, counted from one, or none of them is the current one. Also told to
    /// assistive technology, soon, unless another search begins before.
    void showCount(std::int64_t number, std::int64_t all);

    void setVisible(bool visible) override;

Q_SIGNALS:
    /// The user looks for something else from now on.
    void patternChanged();
    void nextWanted();
    void previousWanted();
    void closeWanted();

protected:
    void keyPressEvent(QKeyEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QLineEdit *m_field;
    PlainLabel *m_count;
    QCheckBox *m_matchCase = nullptr;
    /// Until the bar says that a search goes on, and until its result is announced.
    QTimer m_patience;
    QTimer m_announcement;
    /// The user waits for a result.
    bool m_isAwaited = false;
};

#pragma once

// An output pane in which a text can be found: the pane, and at its lower edge a bar, hidden until it is asked for.
// While the bar is there, every match in view is marked; the current one is selected and in view.

#include "Find/SearchThread.h"
#include "OutputPane/OutputPane.h"
#include "OutputPane/Throttle.h"

#include <QPointer>
#include <QWidget>

class FindBar;
class RunController;

class FindablePane : public QWidget
{
    Q_OBJECT

public:
    /// The pane becomes a part of this. `controller`, whose output it shows, must outlive it.
    FindablePane(OutputPane *pane, RunController &controller, QWidget *parent = nullptr);

    /// The one that is shown in the window in front; null when there is none.
    static FindablePane *inFrontWindow();

    /// There is a text to find something in.
    bool hasText() const { return !m_pane.text().isEmpty(); }

public Q_SLOTS:
    /// Asks for a text to look for.
    void find();
    /// Goes to the next match or to the one before, as it is said in SearchThread; asks for a text when there is none.
    void findNext();
    void findPrevious();
    /// Looks for what is selected, if anything is.
    void useSelectionForFind();

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    /// Whether a search goes to the first match that the reader comes to, or only counts.
    enum class From { view, nowhere };

    void open();
    void close();
    void search(From from);
    OutputPane::Position placeInView();
    void step(SearchThread::Direction direction);

    OutputPane &m_pane;
    FindBar *m_bar = nullptr;
    SearchThread m_search;
    Throttle m_textChanges;
    /// Had the focus before the bar.
    QPointer<QWidget> m_focusBefore;
};

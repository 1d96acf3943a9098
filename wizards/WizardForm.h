#pragma once

#include "rkbaseqt_export.h"

class QCheckBox;
class QDialog;
class QLabel;
class QProgressBar;
class QPushButton;
class QScrollArea;
class QSplitter;
class QStackedWidget;
class QTextBrowser;
class QWidget;

namespace rkBase {

class WorkFlowTree;

namespace Ui {

/// \brief The widgets of a Wizard's dialog, built in code.
///
/// Left: the tree of steps; right: the current sheet in a scroll area, and a description
/// view; bottom: a stack whose first page holds the buttons and whose second page is the
/// progress row. Every pointer is owned by the dialog passed to setupUi().
class RKBASEQT_EXPORT Wizard {
public:
    /// Tree on the left, sheet area and description on the right.
    QSplitter* mq_splitter = nullptr;
    /// The tree of steps.
    WorkFlowTree* mq_workflowtree = nullptr;
    /// Scroll area around the sheet area.
    QScrollArea* mq_ScrollArea = nullptr;
    /// The widget inside the scroll area that holds the sheets' widgets.
    QWidget* mq_sheetArea = nullptr;
    /// Description pane (links are reported, not followed).
    QTextBrowser* mq_description_text = nullptr;
    /// Bottom row: the buttons page or the progress page.
    QStackedWidget* mq_bottomStack = nullptr;
    /// Page with the navigation and close buttons.
    QWidget* m_ButtonsPage = nullptr;
    /// Page with the progress label, bar and cancel button.
    QWidget* m_progressPage = nullptr;
    /// Opens the description or help.
    QPushButton* mq_help_button = nullptr;
    /// An optional question; hidden unless a wizard uses it.
    QCheckBox* mq_question_check = nullptr;
    /// "Save to Journal".
    QPushButton* mq_journal_button = nullptr;
    /// "Close" or "Cancel".
    QPushButton* mq_close_button = nullptr;
    /// "Previous".
    QPushButton* mq_previous_button = nullptr;
    /// "Next".
    QPushButton* mq_next_button = nullptr;
    /// "Processing:" and the running step's text.
    QLabel* mq_progress_label = nullptr;
    /// The progress bar (0..100, or busy).
    QProgressBar* mq_progress_bar = nullptr;
    /// Cancels the running operation.
    QPushButton* mq_cancel_button = nullptr;

    /// Builds the widgets on `dialog` and lays them out.
    void setupUi(QDialog* dialog);
    /// Sets the translated texts.
    void retranslateUi(QDialog* dialog);
};

} // namespace Ui
} // namespace rkBase

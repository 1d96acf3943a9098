#pragma once

#include "wizards/AbstractSheetHandler.h"
#include "wizards/WizardForm.h"

#include <QDialog>
#include <QMutex>

class QAction;

namespace rkBase {

class WizardProgress;

/// \brief A dialog that walks the user through a chain of sheets, with a progress row.
///
/// Derive from it, add the sheets in populate_sheets() with add_sheet() (they chain in the
/// order added: Next goes to the sheet added after), and show it. Opening runs startup() once;
/// the current sheet is activated after the window is shown. A sheet's long operation reports
/// through get_progress(): the buttons turn into a progress bar with Cancel, and the tree and
/// sheets are disabled until it finishes; closing the dialog during a run cancels the run.
/// GUI thread only, except WizardProgress's reporting operations.
class RKBASEQT_EXPORT Wizard : public QDialog, public AbstractSheetHandler, public Ui::Wizard {
    Q_OBJECT

public:
    /// Shuts the sheets down and deletes them.
    ~Wizard() override;

    /// The progress object of this wizard, made at the first call and owned by the wizard.
    WizardProgress* get_progress();
    /// How many wizards exist in the process.
    static int numActiveWizards();

    /// Builds nothing twice: wires the form to the handler and populates the sheets, once.
    void startup() override;
    /// Closes the dialog.
    void close() override;
    /// Adds `sheet` and chains it after the sheet added before.
    void add_sheet(AbstractSheet* sheet) override;
    /// Inserts `sheet` before `before` in the tree and in the chain; inserted before the first,
    /// it becomes the first.
    void insert_sheet(AbstractSheet* sheet, AbstractSheet* before) override;
    /// Joins the sheet's neighbours in the chain, then removes it (the caller owns it afterwards).
    void remove_sheet(AbstractSheet* sheet) override;
    /// Sets the window title to the sheet's, then activates it.
    void activate_sheet(AbstractSheet* sheet, bool updateTree) override;
    using AbstractSheetHandler::activate_sheet;
    /// Cancels the running operation, if any.
    void cancel_button_pressed() override;
    /// Whether the dialog is modal.
    bool is_modal() override;

    /// The close button reads "Cancel".
    virtual void set_cancel_button_mode();
    /// The close button reads "Close", the journal button shows, previous and next hide.
    virtual void set_close_button_mode();
    /// Hides the question check box; override to ask something.
    virtual void setupQuestionCheck();
    /// Shows or hides previous and next together; `text` is the next button's text when shown.
    virtual void show_next_previous(bool visible, QString const& text);
    /// The close button was pressed: emits wizardComplete_signal() when the last sheet of the
    /// chain is complete, then closes.
    virtual void closeButtonClicked(bool checked);
    /// The journal button was pressed; the journal is the application's, so nothing happens here.
    virtual void journalButtonClicked();

    /// Progress hook: the running step's text.
    virtual void progress_caption_impl(QString const& caption);
    /// Progress hook: the value (0..100).
    virtual void progress_changed_impl(int value);
    /// Progress hook: a busy bar when `indeterminate`.
    virtual void progress_determinate_changed_impl(bool indeterminate);
    /// Progress hook: the run ended; the buttons come back and the tree is enabled.
    virtual void progress_finished_impl();
    /// Progress hook: the run paused; nothing changes here.
    virtual void progress_paused_impl();
    /// Progress hook: the run began; the progress row replaces the buttons.
    virtual void progress_started_impl(bool canCancel);

signals:
    /// The user closed the wizard with every sheet of the chain complete.
    void wizardComplete_signal();

protected:
    /// A null `parent` means the application's active window.
    explicit Wizard(QWidget* parent = nullptr, Qt::WindowFlags flags = Qt::WindowFlags());

    /// Runs startup() on the first show and activates the current sheet after the window shows.
    void showEvent(QShowEvent* event) override;
    /// During a run, cancels it instead of closing.
    void closeEvent(QCloseEvent* event) override;
    /// During a run (Esc), cancels it instead of closing.
    void reject() override;

private slots:
    void onCloseButtonClicked(bool checked);
    void onJournalButtonClicked();
    void postShow();

private:
    bool running() const;

    WizardProgress* m_progress = nullptr;
    QAction* m_helpAction = nullptr;
    bool m_started = false;

    static int numWizardsActive;
    static QMutex numActiveWizardsLock;
};

} // namespace rkBase

#include "wizards/Wizard.h"

#include "frame/rkProductInfo.h"
#include "wizards/AbstractSheet.h"
#include "wizards/WizardProgress.h"
#include "wizards/WorkFlowTree.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QCloseEvent>
#include <QLabel>
#include <QMutexLocker>
#include <QProgressBar>
#include <QPushButton>
#include <QScrollArea>
#include <QSplitter>
#include <QStackedWidget>
#include <QTextBrowser>
#include <QTimer>

namespace rkBase {

int Wizard::numWizardsActive = 0;
QMutex Wizard::numActiveWizardsLock;

Wizard::Wizard(QWidget* parent, Qt::WindowFlags flags)
    : QDialog(parent ? parent : QApplication::activeWindow(), flags)
{
    setProperty("nosheet", true);
    const QString product = QString::fromStdString(rkProductInfo::const_instance().product_name()).toLower();
    setWindowIcon(QIcon(QStringLiteral(":/tesk/Resources/") + product + QStringLiteral("appicon.png")));
    // The form is built once here; a dialog is shown and hidden many times, and each show must
    // not build a second set of widgets.
    setupUi(this);
    {
        QMutexLocker lock(&numActiveWizardsLock);
        ++numWizardsActive;
    }
}

Wizard::~Wizard()
{
    if (m_progress && m_progress->is_started())
        m_progress->cancel_progress();
    if (isRunning())
        shutdown();
    QMutexLocker lock(&numActiveWizardsLock);
    --numWizardsActive;
}

int Wizard::numActiveWizards()
{
    QMutexLocker lock(&numActiveWizardsLock);
    return numWizardsActive;
}

WizardProgress* Wizard::get_progress()
{
    if (!m_progress)
        m_progress = new WizardProgress(this);
    return m_progress;
}

bool Wizard::running() const { return m_progress && m_progress->is_started(); }

void Wizard::startup()
{
    if (m_started)
        return;
    m_started = true;
    m_splitter = mq_splitter;
    m_tree = mq_workflowtree;
    m_sheetArea = mq_sheetArea;
    m_helpButton = mq_help_button;
    m_previousButton = mq_previous_button;
    m_nextButton = mq_next_button;
    // No description view: the help button and F1 go straight to the help page.
    m_descriptionView = nullptr;
    AbstractSheetHandler::startup();
    // The stretch factors share out later resizes; the first split is set here, or the tree's
    // size hint would take most of the width from the sheet.
    const int treeWidth = qMax(160, width() / 4);
    mq_splitter->setSizes({treeWidth, qMax(200, width() - treeWidth), 0});
    m_showDescription = false;
    mq_description_text->hide();
    mq_journal_button->hide();
    setupQuestionCheck();
    connect(mq_close_button, &QPushButton::clicked, this, &Wizard::onCloseButtonClicked);
    connect(mq_journal_button, &QPushButton::clicked, this, &Wizard::onJournalButtonClicked);
    connect(mq_cancel_button, &QPushButton::clicked, this, [this] { cancel_button_pressed(); });
    m_helpAction = new QAction(this);
    m_helpAction->setShortcut(QKeySequence(Qt::Key_F1));
    // Shortcut for this dialog and its children only: with an application-wide one, two open
    // wizards would make F1 ambiguous and neither would react.
    m_helpAction->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    addAction(m_helpAction);
    connect(m_helpAction, &QAction::triggered, mq_workflowtree, &WorkFlowTree::helpClicked);
}

void Wizard::close() { QDialog::close(); }

bool Wizard::is_modal() { return isModal(); }

void Wizard::add_sheet(AbstractSheet* sheet)
{
    if (!sheet || holds(sheet))
        return;
    // Taken before the base class runs: for a child sheet it records the new sheet as the last
    // one itself, and linking after that would make the sheet its own neighbour.
    AbstractSheet* last = lastSheet();
    AbstractSheetHandler::add_sheet(sheet);
    if (last && last != sheet) {
        last->next(sheet);
        sheet->previous(last);
        setLastSheet(sheet);
    } else if (sheets().size() == 1) {
        setLastSheet(sheet);
    }
}

void Wizard::insert_sheet(AbstractSheet* sheet, AbstractSheet* before)
{
    if (!sheet || holds(sheet))
        return;
    if (!before || !holds(before)) {
        add_sheet(sheet);
        return;
    }
    AbstractSheet* earlier = before->previous();
    AbstractSheet* last = lastSheet();
    AbstractSheetHandler::insert_sheet(sheet, before);
    setLastSheet(last); // the end of the chain has not moved
    before->previous(sheet);
    if (earlier)
        earlier->next(sheet);
    sheet->previous(earlier);
    sheet->next(before);
}

void Wizard::remove_sheet(AbstractSheet* sheet)
{
    if (!sheet)
        return;
    if (holds(sheet)) {
        AbstractSheet* before = sheet->previous();
        AbstractSheet* after = sheet->next();
        if (before && before->next() == sheet)
            before->next(after);
        if (after && after->previous() == sheet)
            after->previous(before);
        if (lastSheet() == sheet)
            setLastSheet(before);
        sheet->previous(nullptr);
        sheet->next(nullptr);
    }
    AbstractSheetHandler::remove_sheet(sheet);
}

void Wizard::activate_sheet(AbstractSheet* sheet, bool updateTree)
{
    if (sheet && sheet->widget())
        setWindowTitle(sheet->widget()->windowTitle());
    AbstractSheetHandler::activate_sheet(sheet, updateTree);
}

void Wizard::cancel_button_pressed()
{
    if (m_progress)
        m_progress->cancel_progress();
}

void Wizard::showEvent(QShowEvent* event)
{
    startup();
    QDialog::showEvent(event);
    QTimer::singleShot(0, this, &Wizard::postShow);
}

void Wizard::postShow()
{
    if (currentSheet() && !currentSheet()->isActive())
        activate_sheet(currentSheet(), true);
}

void Wizard::closeEvent(QCloseEvent* event)
{
    if (running()) {
        // Closing would destroy the wizard under the running operation; ask it to stop instead.
        cancel_button_pressed();
        event->ignore();
        return;
    }
    QDialog::closeEvent(event);
}

void Wizard::reject()
{
    if (running()) {
        cancel_button_pressed();
        return;
    }
    QDialog::reject();
}

void Wizard::set_cancel_button_mode()
{
    mq_close_button->setText(tr("Cancel"));
    mq_close_button->show();
}

void Wizard::set_close_button_mode()
{
    mq_close_button->setText(tr("Close"));
    mq_close_button->show();
    mq_journal_button->show();
    show_next_previous(false, tr("Next"));
}

void Wizard::setupQuestionCheck() { mq_question_check->hide(); }

void Wizard::show_next_previous(bool visible, QString const& text)
{
    mq_previous_button->setVisible(visible);
    mq_next_button->setVisible(visible);
    if (visible)
        mq_next_button->setText(text);
}

void Wizard::onCloseButtonClicked(bool checked) { closeButtonClicked(checked); }

void Wizard::onJournalButtonClicked() { journalButtonClicked(); }

void Wizard::closeButtonClicked(bool)
{
    AbstractSheet* last = lastSheet();
    if (last && last->isComplete() && last->isAvailable())
        emit wizardComplete_signal();
    QDialog::close();
}

void Wizard::journalButtonClicked() {}

void Wizard::progress_caption_impl(QString const& caption) { mq_progress_label->setText(caption); }

void Wizard::progress_changed_impl(int value) { mq_progress_bar->setValue(value); }

void Wizard::progress_determinate_changed_impl(bool indeterminate)
{
    if (m_progress)
        mq_progress_bar->setRange(0, indeterminate ? 0 : 100);
}

void Wizard::progress_finished_impl()
{
    mq_bottomStack->setCurrentWidget(m_ButtonsPage);
    mq_workflowtree->setEnabled(true);
    mq_sheetArea->setEnabled(true);
    mq_cancel_button->setDefault(false);
}

void Wizard::progress_paused_impl() {}

void Wizard::progress_started_impl(bool canCancel)
{
    mq_bottomStack->setCurrentWidget(m_progressPage);
    mq_progress_bar->setValue(0);
    mq_cancel_button->setVisible(canCancel);
    mq_cancel_button->setDefault(canCancel);
    // The sheet's own "Run" must not start a second run while this one lets the event loop in.
    mq_workflowtree->setEnabled(false);
    mq_sheetArea->setEnabled(false);
}

} // namespace rkBase

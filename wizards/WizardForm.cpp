#include "wizards/WizardForm.h"

#include "wizards/WorkFlowTree.h"

#include <QCheckBox>
#include <QCoreApplication>
#include <QDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QScrollArea>
#include <QSplitter>
#include <QStackedWidget>
#include <QTextBrowser>
#include <QVBoxLayout>

namespace rkBase::Ui {

void Wizard::setupUi(QDialog* dialog)
{
    if (dialog->objectName().isEmpty())
        dialog->setObjectName(QStringLiteral("Wizard"));
    dialog->resize(720, 480);
    auto* outer = new QVBoxLayout(dialog);

    mq_splitter = new QSplitter(Qt::Horizontal, dialog);
    mq_splitter->setObjectName(QStringLiteral("mq_splitter"));
    mq_splitter->setChildrenCollapsible(false);
    mq_workflowtree = new WorkFlowTree(mq_splitter);
    mq_workflowtree->setMinimumWidth(140);
    mq_ScrollArea = new QScrollArea(mq_splitter);
    mq_ScrollArea->setObjectName(QStringLiteral("mq_ScrollArea"));
    mq_ScrollArea->setWidgetResizable(true);
    mq_ScrollArea->setFrameShape(QFrame::NoFrame);
    mq_sheetArea = new QWidget;
    mq_sheetArea->setObjectName(QStringLiteral("mq_sheetArea"));
    new QVBoxLayout(mq_sheetArea);
    mq_ScrollArea->setWidget(mq_sheetArea);
    mq_description_text = new QTextBrowser(mq_splitter);
    mq_description_text->setObjectName(QStringLiteral("mq_description_text"));
    mq_description_text->setOpenLinks(false);
    mq_splitter->addWidget(mq_workflowtree);
    mq_splitter->addWidget(mq_ScrollArea);
    mq_splitter->addWidget(mq_description_text);
    outer->addWidget(mq_splitter, 1);

    mq_bottomStack = new QStackedWidget(dialog);
    mq_bottomStack->setObjectName(QStringLiteral("mq_bottomStack"));
    m_ButtonsPage = new QWidget;
    m_ButtonsPage->setObjectName(QStringLiteral("m_ButtonsPage"));
    auto* buttons = new QHBoxLayout(m_ButtonsPage);
    buttons->setContentsMargins(0, 0, 0, 0);
    mq_help_button = new QPushButton(m_ButtonsPage);
    mq_help_button->setObjectName(QStringLiteral("mq_help_button"));
    mq_question_check = new QCheckBox(m_ButtonsPage);
    mq_question_check->setObjectName(QStringLiteral("mq_question_check"));
    mq_journal_button = new QPushButton(m_ButtonsPage);
    mq_journal_button->setObjectName(QStringLiteral("mq_journal_button"));
    mq_close_button = new QPushButton(m_ButtonsPage);
    mq_close_button->setObjectName(QStringLiteral("mq_close_button"));
    mq_previous_button = new QPushButton(m_ButtonsPage);
    mq_previous_button->setObjectName(QStringLiteral("mq_previous_button"));
    mq_next_button = new QPushButton(m_ButtonsPage);
    mq_next_button->setObjectName(QStringLiteral("mq_next_button"));
    // Enter in a sheet's line edit must not press Next or Close behind the user's back.
    for (QPushButton* b : {mq_help_button, mq_journal_button, mq_close_button, mq_previous_button, mq_next_button})
        b->setAutoDefault(false);
    buttons->addWidget(mq_help_button);
    buttons->addWidget(mq_question_check);
    buttons->addStretch(1);
    buttons->addWidget(mq_journal_button);
    buttons->addWidget(mq_previous_button);
    buttons->addWidget(mq_next_button);
    buttons->addWidget(mq_close_button);

    m_progressPage = new QWidget;
    m_progressPage->setObjectName(QStringLiteral("m_progressPage"));
    auto* progress = new QHBoxLayout(m_progressPage);
    progress->setContentsMargins(0, 0, 0, 0);
    mq_progress_label = new QLabel(m_progressPage);
    mq_progress_label->setObjectName(QStringLiteral("mq_progress_label"));
    mq_progress_bar = new QProgressBar(m_progressPage);
    mq_progress_bar->setObjectName(QStringLiteral("mq_progress_bar"));
    mq_progress_bar->setRange(0, 100);
    mq_cancel_button = new QPushButton(m_progressPage);
    mq_cancel_button->setObjectName(QStringLiteral("mq_cancel_button"));
    mq_cancel_button->setAutoDefault(false);
    progress->addWidget(mq_progress_label);
    progress->addWidget(mq_progress_bar, 1);
    progress->addWidget(mq_cancel_button);

    mq_bottomStack->addWidget(m_ButtonsPage);
    mq_bottomStack->addWidget(m_progressPage);
    mq_bottomStack->setCurrentWidget(m_ButtonsPage);
    outer->addWidget(mq_bottomStack);

    retranslateUi(dialog);
}

void Wizard::retranslateUi(QDialog*)
{
    auto tr = [](const char* text) { return QCoreApplication::translate("rkBase::Wizard", text); };
    mq_help_button->setText(tr("Help"));
    mq_journal_button->setText(tr("Save to Journal"));
    mq_close_button->setText(tr("Close"));
    mq_previous_button->setText(tr("Previous"));
    mq_next_button->setText(tr("Next"));
    mq_progress_label->setText(tr("Processing:"));
    mq_cancel_button->setText(tr("Cancel"));
}

} // namespace rkBase::Ui

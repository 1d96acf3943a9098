#include "frame/rkProductInfo.h"
#include "wizards/AbstractSheet.h"
#include "wizards/Wizard.h"
#include "wizards/WizardProgress.h"
#include "wizards/WorkFlowTree.h"

#include <QApplication>
#include <QCheckBox>
#include <QDesktopServices>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QSettings>
#include <QSplitter>
#include <QStackedWidget>
#include <QTemporaryDir>
#include <QTextBrowser>
#include <QThread>
#include <QVBoxLayout>
#include <QtTest>

#include <atomic>

using namespace rkBase;

namespace {

// A sheet as an application writes one: a widget with a title, and a completeness of its own.
class TestSheet : public AbstractSheet {
public:
    TestSheet(AbstractSheetHandler* handler, const QString& title, AbstractSheet* parent = nullptr)
        : AbstractSheet(handler, parent)
    {
        auto* w = new QWidget;
        w->setWindowTitle(title);
        auto* layout = new QVBoxLayout(w);
        layout->addWidget(new QLabel(QStringLiteral("<b>%1</b><br>Settings of this step.").arg(title), w));
        layout->addWidget(new QLineEdit(w));
        layout->addStretch(1);
        setWidget(w);
    }
    bool isComplete() override { return complete; }
    void activate() override { ++activations; }
    void deactivate() override { ++deactivations; }
    void startup() override { ++startups; }
    bool complete = false;
    int activations = 0, deactivations = 0, startups = 0;
};

class TestWizard : public Wizard {
public:
    explicit TestWizard(QWidget* parent = nullptr)
        : Wizard(parent)
    {
    }
    ~TestWizard() override { ++destroyed; }
    void populate_sheets() override
    {
        ++populations;
        for (const char* title : {"Source", "Options", "Run"}) {
            auto* sheet = new TestSheet(this, QString::fromLatin1(title));
            add_sheet(sheet);
            made << sheet;
        }
    }
    TestSheet* sheet(int i) const { return made.value(i); }
    QList<TestSheet*> made;
    int populations = 0;
    static int destroyed;
};
int TestWizard::destroyed = 0;

// A handler with a description view, as a tool window (not the wizard) builds one.
class PanelHandler : public AbstractSheetHandler {
public:
    PanelHandler()
    {
        splitter = new QSplitter;
        auto* tree = new WorkFlowTree;
        splitter->addWidget(tree);
        auto* area = new QWidget;
        splitter->addWidget(area);
        view = new QTextBrowser;
        splitter->addWidget(view);
        help = new QPushButton;
        prev = new QPushButton;
        next = new QPushButton;
        m_splitter = splitter;
        m_tree = tree;
        m_sheetArea = area;
        m_descriptionView = view;
        m_helpButton = help;
        m_previousButton = prev;
        m_nextButton = next;
    }
    ~PanelHandler() override
    {
        if (isRunning())
            shutdown();
        delete help;
        delete prev;
        delete next;
        delete splitter;
    }
    void populate_sheets() override
    {
        for (const char* title : {"First", "Second"}) {
            auto* sheet = new TestSheet(this, QString::fromLatin1(title));
            made << sheet;
            add_sheet(sheet);
        }
        // The chain of a plain handler is the application's to make.
        made[0]->next(made[1]);
        made[1]->previous(made[0]);
    }
    QSplitter* splitter;
    QTextBrowser* view;
    QPushButton *help, *prev, *next;
    QList<TestSheet*> made;
};

QStringList chain(AbstractSheet* first)
{
    QStringList titles;
    for (AbstractSheet* s = first; s && titles.size() < 20; s = s->next())
        titles << s->title();
    return titles;
}

QStringList chainBackwards(AbstractSheet* last)
{
    QStringList titles;
    for (AbstractSheet* s = last; s && titles.size() < 20; s = s->previous())
        titles.prepend(s->title());
    return titles;
}

QString treeText(QTreeWidget* tree)
{
    QStringList titles;
    for (int i = 0; i < tree->topLevelItemCount(); ++i)
        titles << tree->topLevelItem(i)->text(0);
    return titles.join(QLatin1Char(','));
}

} // namespace

class TestWizardDialog : public QObject {
    Q_OBJECT

    QTemporaryDir m_settingsDir;
    QList<QUrl> m_openedUrls;

public slots:
    void openUrl(const QUrl& url) { m_openedUrls << url; }

private slots:
    void initTestCase()
    {
        QStandardPaths::setTestModeEnabled(true);
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, m_settingsDir.path());
        QCoreApplication::setOrganizationName(QStringLiteral("rkBaseTest"));
        QCoreApplication::setApplicationName(QStringLiteral("tst_wizard"));
        QDesktopServices::setUrlHandler(QStringLiteral("http"), this, "openUrl");
        QDesktopServices::setUrlHandler(QStringLiteral("https"), this, "openUrl");
    }

    void cleanupTestCase()
    {
        QDesktopServices::unsetUrlHandler(QStringLiteral("http"));
        QDesktopServices::unsetUrlHandler(QStringLiteral("https"));
    }

    void drivenFromStartToFinish()
    {
        TestWizard wizard;
        wizard.show();
        QVERIFY(QTest::qWaitForWindowExposed(&wizard));
        QCOMPARE(wizard.sheets().size(), std::size_t(3));
        TestSheet* source = wizard.sheet(0);
        TestSheet* options = wizard.sheet(1);
        TestSheet* run = wizard.sheet(2);
        QTRY_COMPARE(source->activations, 1); // after the window is shown, once
        QCOMPARE(source->startups, 1);
        QCOMPARE(wizard.windowTitle(), QStringLiteral("Source"));
        QCOMPARE(chain(source), (QStringList{"Source", "Options", "Run"}));
        QCOMPARE(wizard.mq_workflowtree->currentItem()->text(0), QStringLiteral("Source"));

        // Next stays disabled until the sheet says it is complete.
        QVERIFY(!wizard.mq_next_button->isEnabled());
        QVERIFY(!wizard.mq_previous_button->isEnabled());
        wizard.mq_next_button->click();
        QCOMPARE(wizard.currentSheet(), source);
        source->complete = true;
        wizard.update_navigation();
        QVERIFY(wizard.mq_next_button->isEnabled());
        wizard.mq_next_button->click();
        QCOMPARE(wizard.currentSheet(), options);
        QCOMPARE(source->deactivations, 1);
        QCOMPARE(wizard.mq_workflowtree->currentItem()->text(0), QStringLiteral("Options"));
        QCOMPARE(wizard.windowTitle(), QStringLiteral("Options"));
        QVERIFY(source->widget()->isHidden());
        QVERIFY(!options->widget()->isHidden());
        QVERIFY(wizard.mq_previous_button->isEnabled());

        // A click in the tree on a sheet whose previous sheet is incomplete shows it disabled.
        QTreeWidgetItem* runItem = wizard.mq_workflowtree->topLevelItem(2);
        wizard.mq_workflowtree->setCurrentItem(runItem); // as a click or the arrow keys do
        QCOMPARE(wizard.currentSheet(), run);
        QVERIFY(!run->isActive());
        QCOMPARE(run->activations, 0);
        QVERIFY(!run->widget()->isEnabled());
        QVERIFY(!wizard.mq_previous_button->isEnabled());

        options->complete = true;
        run->complete = true;
        wizard.mq_workflowtree->setCurrentItem(wizard.mq_workflowtree->topLevelItem(1));
        QCOMPARE(wizard.currentSheet(), options);
        wizard.activate_next_sheet();
        QVERIFY(run->isActive());
        QVERIFY(run->widget()->isEnabled());
        QVERIFY(!wizard.mq_next_button->isEnabled()); // the last sheet has no next

        QSignalSpy complete(&wizard, &Wizard::wizardComplete_signal);
        wizard.mq_close_button->click();
        QCOMPARE(complete.count(), 1);
        QVERIFY(!wizard.isVisible());
    }

    void chainFollowsInsertAndRemove()
    {
        TestWizard wizard;
        wizard.startup();
        TestSheet* source = wizard.sheet(0);
        TestSheet* options = wizard.sheet(1);
        TestSheet* run = wizard.sheet(2);

        auto* intro = new TestSheet(&wizard, QStringLiteral("Intro"));
        wizard.insert_sheet(intro, source); // before the first: becomes first
        auto* check = new TestSheet(&wizard, QStringLiteral("Check"));
        wizard.insert_sheet(check, run);
        QCOMPARE(chain(intro), (QStringList{"Intro", "Source", "Options", "Check", "Run"}));
        QCOMPARE(chainBackwards(run), (QStringList{"Intro", "Source", "Options", "Check", "Run"}));
        QCOMPARE(treeText(wizard.mq_workflowtree), QStringLiteral("Intro,Source,Options,Check,Run"));

        wizard.remove_sheet(options); // the middle: neighbours join
        QCOMPARE(chain(intro), (QStringList{"Intro", "Source", "Check", "Run"}));
        QCOMPARE(chainBackwards(run), (QStringList{"Intro", "Source", "Check", "Run"}));
        QVERIFY(!options->next() && !options->previous());
        QVERIFY(!options->treeItem());
        QVERIFY(!options->widget()->parent()); // handed back whole, out of the dialog
        QCOMPARE(wizard.getSheet(QStringLiteral("Options")), nullptr);
        delete options;

        wizard.remove_sheet(run); // the last: the chain ends before it, and new sheets follow that
        auto* report = new TestSheet(&wizard, QStringLiteral("Report"));
        wizard.add_sheet(report);
        QCOMPARE(chain(intro), (QStringList{"Intro", "Source", "Check", "Report"}));
        delete run;

        // A child sheet chains after its parent and is listed below it; never its own neighbour.
        auto* detail = new TestSheet(&wizard, QStringLiteral("Detail"), report);
        wizard.add_sheet(detail);
        QCOMPARE(detail->previous(), report);
        QVERIFY(detail->next() != detail);
        QCOMPARE(report->treeItem()->childCount(), 1);
        QVERIFY(report->treeItem()->isExpanded());
        QVERIFY(!detail->isAvailable()); // terminates, and Check/Report are incomplete

        // Removing a parent takes its children with it.
        wizard.remove_sheet(report);
        QCOMPARE(wizard.getSheet(QStringLiteral("Detail")), nullptr);
        QVERIFY(report->children().empty());
        delete report;
        QCOMPARE(wizard.sheets().size(), std::size_t(3));
    }

    void loopedChainStillAnswers()
    {
        TestWizard wizard;
        wizard.startup();
        TestSheet* a = wizard.sheet(0);
        TestSheet* c = wizard.sheet(2);
        a->previous(c); // a loop made by hand
        for (TestSheet* s : wizard.made)
            s->complete = true;
        QVERIFY(c->isAvailable());
        a->complete = false;
        QVERIFY(!wizard.sheet(1)->isAvailable());
    }

    void showHideShowKeepsOneSetOfSheets()
    {
        TestWizard wizard;
        wizard.show();
        QTRY_COMPARE(wizard.sheet(0)->activations, 1);
        wizard.hide();
        wizard.show();
        QCoreApplication::processEvents();
        QCOMPARE(wizard.populations, 1);
        QCOMPARE(wizard.sheets().size(), std::size_t(3));
        QCOMPARE(wizard.mq_workflowtree->topLevelItemCount(), 3);
        QCOMPARE(wizard.sheet(0)->activations, 1); // still active: not activated again
    }

    void countsWizardsAndTakesTheActiveWindow()
    {
        QCOMPARE(Wizard::numActiveWizards(), 0);
        QWidget window;
        window.show();
        QApplication::setActiveWindow(&window);
        QTRY_COMPARE(QApplication::activeWindow(), &window);
        auto* first = new TestWizard;
        QCOMPARE(first->parentWidget(), &window);
        QVERIFY(first->property("nosheet").toBool());
        {
            TestWizard second(first);
            QCOMPARE(Wizard::numActiveWizards(), 2);
        }
        QCOMPARE(Wizard::numActiveWizards(), 1);
        delete first;
        QCOMPARE(Wizard::numActiveWizards(), 0);
    }

    void helpGoesToTheProductsHelp()
    {
        TestWizard wizard;
        wizard.show();
        QTRY_VERIFY(wizard.sheet(0)->isActive());
        QVERIFY(wizard.mq_help_button->isHidden()); // no key, no description: no help button
        wizard.sheet(0)->setHelpKey(QStringLiteral("wizards/source"));
        wizard.update_navigation();
        QVERIFY(!wizard.mq_help_button->isHidden());
        QSignalSpy internal(&rkProductInfo::instance(), &rkProductInfo::openHelp);
        QSignalSpy external(&rkProductInfo::instance(), &rkProductInfo::openHelpExternal);
        wizard.mq_help_button->click();
        QCOMPARE(internal.count(), 1);
        QCOMPARE(internal.at(0).at(0).toString(), QStringLiteral("wizards/source"));
        wizard.setModal(true); // a modal dialog sends help outside the application
        emit wizard.mq_workflowtree->helpClicked();
        QCOMPARE(external.count(), 1);
        QVERIFY(wizard.mq_description_text->isHidden());
    }

    void descriptionLinks_data()
    {
        QTest::addColumn<QString>("link");
        QTest::addColumn<bool>("firstComplete");
        QTest::addColumn<QString>("current");
        QTest::addColumn<int>("helpRequests");
        QTest::addColumn<int>("urlsOpened");
        QTest::newRow("next, incomplete") << "sheet:next" << false << "First" << 0 << 0;
        QTest::newRow("next, complete") << "sheet:next" << true << "Second" << 0 << 0;
        QTest::newRow("by title") << "sheet:Second" << false << "Second" << 0 << 0;
        QTest::newRow("unknown title") << "sheet:Nowhere" << true << "First" << 0 << 0;
        QTest::newRow("help") << "help:topics/first" << false << "First" << 1 << 0;
        QTest::newRow("http") << "http://example.org/a" << false << "First" << 0 << 1;
        QTest::newRow("https") << "https://example.org/a" << false << "First" << 0 << 1;
        QTest::newRow("other scheme") << "file:///etc/passwd" << false << "First" << 0 << 0;
    }
    void descriptionLinks()
    {
        QFETCH(QString, link);
        QFETCH(bool, firstComplete);
        QFETCH(QString, current);
        QFETCH(int, helpRequests);
        QFETCH(int, urlsOpened);
        m_openedUrls.clear();
        PanelHandler panel;
        panel.startup();
        panel.made[0]->complete = firstComplete;
        QSignalSpy help(&rkProductInfo::instance(), &rkProductInfo::openHelp);
        emit panel.view->anchorClicked(QUrl(link));
        QCOMPARE(panel.currentSheet()->title(), current);
        QCOMPARE(help.count(), helpRequests);
        QCOMPARE(m_openedUrls.size(), urlsOpened);
        // Whatever the link did, the buttons match the current sheet afterwards.
        QCOMPARE(panel.next->isEnabled(), panel.currentSheet() == panel.made[0] && firstComplete);
    }

    void descriptionFromResourcesAndItsSetting()
    {
        {
            PanelHandler panel;
            panel.startup();
            QVERIFY(!panel.showDescription()); // default
            panel.made[0]->description(QStringLiteral(":/wizardtest/first.html"));
            panel.made[0]->setHelpKey(QStringLiteral("topics/first"));
            panel.update_navigation();
            const QString html = panel.view->toHtml();
            QVERIFY2(html.contains(QStringLiteral("Pick the file")), qPrintable(html));
            QVERIFY(html.contains(QStringLiteral("Kb\u00fcndel"))); // decoded as its charset says
            QVERIFY(html.contains(QStringLiteral("help:topics/first")));
            QVERIFY(panel.view->isHidden());
            panel.help->click(); // text present: the view toggles instead of opening help
            QVERIFY(panel.showDescription());
            QVERIFY(!panel.view->isHidden());

            panel.made[1]->description(QStringLiteral("<p>Plain text, not a path</p>"));
            panel.activate_sheet(panel.made[1], true);
            QVERIFY(panel.view->toPlainText().contains(QStringLiteral("Plain text")));
            panel.made[1]->description(QStringLiteral(":/wizardtest/missing.html"));
            panel.update_navigation();
            QCOMPARE(panel.view->toPlainText(), QStringLiteral(":/wizardtest/missing.html"));
        } // shutdown writes the choice
        QSettings settings;
        QCOMPARE(settings.value(QStringLiteral("AbstractSheetHandler/showDescription")).toBool(), true);
        {
            PanelHandler panel;
            panel.startup();
            QVERIFY(panel.showDescription());
        }
        {
            // A wizard has no description view and leaves the user's choice alone.
            TestWizard wizard;
            wizard.show();
            QCoreApplication::processEvents();
        }
        QCOMPARE(QSettings().value(QStringLiteral("AbstractSheetHandler/showDescription")).toBool(), true);
    }

    void progressFromTheGuiThread()
    {
        TestWizard wizard;
        wizard.show();
        QTRY_VERIFY(wizard.sheet(0)->isActive());
        WizardProgress* progress = wizard.get_progress();
        QCOMPARE(wizard.get_progress(), progress);
        progress->start_progress(true);
        QCOMPARE(wizard.mq_bottomStack->currentWidget(), wizard.m_progressPage);
        QVERIFY(!wizard.mq_workflowtree->isEnabled());
        QVERIFY(!wizard.mq_sheetArea->isEnabled());
        QVERIFY(!wizard.mq_cancel_button->isHidden());
        progress->set_caption(QStringLiteral("Gridding"));
        QCOMPARE(wizard.mq_progress_label->text(), QStringLiteral("Gridding"));
        progress->set_non_determinate(true);
        QCOMPARE(wizard.mq_progress_bar->maximum(), 0);
        progress->set_non_determinate(false);
        bool cancelled = false;
        for (int i = 0; i <= 100 && !cancelled; ++i) {
            cancelled = progress->set_progress(i);
            progress->processEvents(i, 1);
            if (i == 40) {
                wizard.close(); // closing during a run cancels instead
                QVERIFY(wizard.isVisible());
            }
        }
        QVERIFY(cancelled);
        QTRY_COMPARE(wizard.mq_progress_bar->value(), 41); // the latest value is always shown
        progress->finish_progress();
        QCOMPARE(wizard.mq_bottomStack->currentWidget(), wizard.m_ButtonsPage);
        QVERIFY(wizard.mq_workflowtree->isEnabled());
        QVERIFY(wizard.mq_sheetArea->isEnabled());
        progress->start_progress(false); // a new run forgets the cancel, and offers none
        QVERIFY(!progress->is_cancelled());
        QVERIFY(wizard.mq_cancel_button->isHidden());
        progress->finish_progress();
        wizard.close();
        QVERIFY(!wizard.isVisible());
    }

    void progressFromAWorkerAndScreenshot()
    {
        TestWizard wizard;
        wizard.resize(760, 420);
        wizard.show();
        QVERIFY(QTest::qWaitForWindowExposed(&wizard));
        QTRY_VERIFY(wizard.sheet(0)->isActive());
        wizard.sheet(0)->complete = true;
        wizard.activate_next_sheet();
        WizardProgress* progress = wizard.get_progress();
        progress->setProcessEvents(false);
        std::atomic<int> reached{-1};
        std::atomic<bool> stopped{false};
        std::atomic<bool> release{false};
        QThread* worker = QThread::create([&] {
            progress->start_progress(true);
            progress->set_caption(QStringLiteral("Reprojecting grid"));
            for (int i = 0; i <= 100; ++i) {
                if (progress->set_progress(i)) {
                    stopped = true;
                    break;
                }
                reached = i;
                if (i == 62)
                    while (!release && !progress->is_cancelled())
                        QThread::msleep(2);
                QThread::msleep(1);
            }
            progress->finish_progress();
        });
        worker->start();
        QTRY_COMPARE(reached.load(), 62);
        QTRY_COMPARE(wizard.mq_progress_bar->value(), 62);
        QCOMPARE(wizard.mq_progress_label->text(), QStringLiteral("Reprojecting grid"));
        QCOMPARE(wizard.mq_bottomStack->currentWidget(), wizard.m_progressPage);
        QVERIFY(!wizard.mq_workflowtree->isEnabled());
        const QImage shot = wizard.grab().toImage();
        const QString path = QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("wizard.png"));
        QVERIFY(shot.save(path));
        QVERIFY(shot.width() >= 700);

        QTest::mouseClick(wizard.mq_cancel_button, Qt::LeftButton);
        QTRY_VERIFY(worker->isFinished());
        worker->wait();
        delete worker;
        QVERIFY(stopped);
        QTRY_COMPARE(wizard.mq_bottomStack->currentWidget(), wizard.m_ButtonsPage);
        QVERIFY(wizard.mq_workflowtree->isEnabled());
        QCOMPARE(wizard.currentSheet(), wizard.sheet(1));
    }

    void buttonModes()
    {
        TestWizard wizard;
        wizard.show();
        QCoreApplication::processEvents();
        QVERIFY(wizard.mq_journal_button->isHidden());
        QVERIFY(wizard.mq_question_check->isHidden());
        wizard.set_cancel_button_mode();
        QCOMPARE(wizard.mq_close_button->text(), QStringLiteral("Cancel"));
        wizard.show_next_previous(true, QStringLiteral("Run"));
        QCOMPARE(wizard.mq_next_button->text(), QStringLiteral("Run"));
        wizard.set_close_button_mode();
        QCOMPARE(wizard.mq_close_button->text(), QStringLiteral("Close"));
        QVERIFY(!wizard.mq_journal_button->isHidden());
        QVERIFY(wizard.mq_next_button->isHidden() && wizard.mq_previous_button->isHidden());
        QCOMPARE(wizard.mq_next_button->text(), QStringLiteral("Run")); // hidden: text kept
    }
};

QTEST_MAIN(TestWizardDialog)
#include "tst_wizard.moc"

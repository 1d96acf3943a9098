#pragma once

#include "rkbaseqt_export.h"

#include <QPointer>
#include <QString>

#include <map>
#include <vector>

class QAbstractButton;
class QSplitter;
class QTextBrowser;
class QTreeWidget;
class QTreeWidgetItem;
class QUrl;
class QWidget;

namespace rkBase {

class AbstractSheet;
class WorkFlowTree;

/// \brief Holds the sheets of one tool, lists them in a tree and shows one at a time.
///
/// A subclass supplies the widgets (splitter, tree, sheet area, description view, help,
/// previous and next buttons) by setting the protected fields, creates its sheets in
/// populate_sheets(), and calls startup() once and shutdown() once. Wizard is the usual subclass.
///
/// Ownership: the handler owns every sheet added to it and deletes those still held when it is
/// destroyed; remove_sheet() hands the sheet back to the caller. Sheets are iterated in the order
/// they were added. GUI thread only.
class RKBASEQT_EXPORT AbstractSheetHandler {
public:
    AbstractSheetHandler();
    /// Deletes the sheets still held. Call shutdown() before, from the subclass's destructor,
    /// so that overrides still run.
    virtual ~AbstractSheetHandler();

    AbstractSheetHandler(const AbstractSheetHandler&) = delete;
    AbstractSheetHandler& operator=(const AbstractSheetHandler&) = delete;

    /// Activates the sheet of a tree item (a click in the tree); the tree is not moved again.
    virtual void activate_sheet(QTreeWidgetItem* item);
    /// Makes `sheet` current: deactivates the former one, shows only this sheet's widget, moves
    /// the tree to it when `updateTree`, and activates it if it is available (otherwise it is
    /// shown disabled). Does nothing for null or while the tree's current item is being set.
    virtual void activate_sheet(AbstractSheet* sheet, bool updateTree);
    /// Goes to the next sheet if the current one is complete and has one.
    virtual void activate_next_sheet();
    /// Goes to the previous sheet, if any, complete or not.
    virtual void activate_previous_sheet();
    /// Enables the previous and next buttons and fills the description view from the current sheet.
    virtual void update_navigation();
    /// Shows or hides the description view; with no view or an empty one, opens the help page.
    virtual void toggle_description();
    /// Follows a link of the description view: "help:", "sheet:previous", "sheet:next",
    /// "sheet:<title>", http and https (system browser); anything else beeps.
    virtual void activate_description_link(const QUrl& url);
    /// Closes the tool; does nothing here.
    virtual void close();
    /// Restarts every sheet and activates the first one of the tree.
    virtual void restart();
    /// The user asked to cancel a running operation; does nothing here.
    virtual void cancel_button_pressed();
    /// Reads the description setting, wires the widgets, calls populate_sheets() and every sheet's
    /// startup(). Runs once; later calls do nothing.
    virtual void startup();
    /// Saves the description setting (when there is a description view), then removes and deletes
    /// every sheet.
    virtual void shutdown();
    /// Creates the tool's sheets and adds them; called by startup().
    virtual void populate_sheets() = 0;
    /// Adds `sheet` (owned from now on) with a tree item at the top level or below its parent's
    /// item. The first sheet ever added becomes the current sheet.
    virtual void add_sheet(AbstractSheet* sheet);
    /// As add_sheet, with the tree item placed before `before`'s; as add_sheet when `before`
    /// is not held.
    virtual void insert_sheet(AbstractSheet* sheet, AbstractSheet* before);
    /// Takes `sheet` out: its child sheets are shut down, removed and deleted, its tree item
    /// deleted, its widget taken out of the sheet area. The caller owns `sheet` afterwards.
    virtual void remove_sheet(AbstractSheet* sheet);
    /// True when the handler runs in a modal window (help then opens outside the application).
    virtual bool is_modal();

    /// The first sheet, in the order added, whose title is `title`; null if none.
    AbstractSheet* getSheet(QString const& title);
    /// The tree of sheets.
    QTreeWidget* tree() const;
    /// The tree of sheets as its own class.
    WorkFlowTree* workFlowTree() const;
    /// The current sheet, or null.
    AbstractSheet* currentSheet() const { return m_current; }
    /// The held sheets in the order they were added.
    const std::vector<AbstractSheet*>& sheets() const { return m_order; }
    /// Whether the description view is to be shown (the saved user setting).
    bool showDescription() const { return m_showDescription; }
    /// Whether startup() activates the current sheet at its end; true by default.
    void setActivateFirstSheet(bool flag) { m_activateFirstSheet = flag; }
    /// See setActivateFirstSheet().
    bool activateFirstSheet() const { return m_activateFirstSheet; }
    /// True from startup() to shutdown().
    bool isRunning() const { return m_running; }

protected:
    /// Puts the sheet's widget into the sheet area (hidden).
    void placeWidget(AbstractSheet* sheet);
    /// The last sheet added to the chain, or null.
    AbstractSheet* lastSheet() const { return m_last; }
    /// Sets the last sheet of the chain.
    void setLastSheet(AbstractSheet* sheet) { m_last = sheet; }
    /// True while the sheet is held.
    bool holds(AbstractSheet* sheet) const { return m_items.count(sheet) != 0; }

    /// Set by the subclass before startup(): the splitter whose second widget is the sheet area.
    QPointer<QSplitter> m_splitter;
    /// Set by the subclass: the tree of sheets.
    QPointer<WorkFlowTree> m_tree;
    /// Set by the subclass: the widget that holds the sheets' widgets (given a layout if it has none).
    QPointer<QWidget> m_sheetArea;
    /// Set by the subclass, or left null for no description pane.
    QPointer<QTextBrowser> m_descriptionView;
    /// Set by the subclass: the help button.
    QPointer<QAbstractButton> m_helpButton;
    /// Set by the subclass: the previous button.
    QPointer<QAbstractButton> m_previousButton;
    /// Set by the subclass: the next button.
    QPointer<QAbstractButton> m_nextButton;
    /// Whether the description view is shown; read from and saved to the settings.
    bool m_showDescription = false;

private:
    void addItem(AbstractSheet* sheet, AbstractSheet* before);
    void openHelp(const QString& key);

    std::map<AbstractSheet*, QTreeWidgetItem*> m_items;
    std::vector<AbstractSheet*> m_order;
    AbstractSheet* m_current = nullptr;
    AbstractSheet* m_last = nullptr;
    bool m_settingTreeItem = false;
    bool m_running = false;
    bool m_activateFirstSheet = true;
};

} // namespace rkBase

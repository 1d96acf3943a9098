#pragma once

#include "rkbaseqt_export.h"

#include <QPointer>
#include <QString>
#include <QWidget>

#include <vector>

class QTreeWidgetItem;

namespace rkBase {

class AbstractSheetHandler;

/// \brief One step of a tool: a widget with a title, a description and a help key.
///
/// A sheet is written by deriving from this class, building its widget in the constructor and
/// passing it to setWidget(), and overriding isComplete() (and whatever else the step needs):
///
/// \code
/// class NameSheet : public rkBase::AbstractSheet {
/// public:
///     explicit NameSheet(rkBase::AbstractSheetHandler* h) : AbstractSheet(h) {
///         auto* w = new QLineEdit;
///         w->setWindowTitle(QObject::tr("Name"));
///         setWidget(w);
///         m_edit = w;
///         QObject::connect(w, &QLineEdit::textChanged, [this] { getSheetHandler()->update_navigation(); });
///     }
///     bool isComplete() override { return !m_edit->text().isEmpty(); }
/// private:
///     QLineEdit* m_edit;
/// };
/// \endcode
///
/// Ownership: the sheet owns its widget (deleted with the sheet). The handler owns every sheet
/// that was added to it until it is removed again (see AbstractSheetHandler::remove_sheet).
/// A sheet owns none of its children; the handler that holds them does. GUI thread only.
class RKBASEQT_EXPORT AbstractSheet {
public:
    /// A top-level sheet of `handler`; nothing is added to the handler yet.
    explicit AbstractSheet(AbstractSheetHandler* handler);
    /// A sheet below `parent`, appended to the parent's children.
    AbstractSheet(AbstractSheetHandler* handler, AbstractSheet* const parent);
    /// Leaves the parent and deletes the widget.
    virtual ~AbstractSheet();

    AbstractSheet(const AbstractSheet&) = delete;
    AbstractSheet& operator=(const AbstractSheet&) = delete;

    /// Called once by the handler's startup, after every sheet was added.
    virtual void startup();
    /// Takes the sheet out of its parent's children.
    virtual void shutdown();
    /// Hook for the application; does nothing here.
    virtual void suspend();
    /// Hook for the application; does nothing here.
    virtual void resume();
    /// The sheet became the active one (and is available).
    virtual void activate();
    /// Another sheet is about to become active.
    virtual void deactivate();
    /// The tool starts over; called by the handler's restart.
    virtual void restart();
    /// Hook for the application; does nothing here.
    virtual void update();
    /// True when the user may go on to the next sheet. False here: a sheet says when it is done.
    virtual bool isComplete();
    /// True with no previous sheet; otherwise the previous sheet must be complete and available.
    /// A chain linked into a loop ends the question where it comes back, instead of recursing.
    virtual bool isAvailable();
    /// The widget's window title, or "Unnamed Workflow" without a widget.
    virtual QString title();
    /// Sets the text of the description pane: HTML, or the path of a resource when it starts with ":".
    virtual void description(QString const& text);
    /// The description as set.
    virtual QString description();
    /// Help page key opened by the help button and the "more help" link; empty for none.
    virtual QString helpkey();
    /// See helpkey().
    virtual void setHelpKey(QString const& key);

    /// The sheet that follows in the chain, or null.
    AbstractSheet* next() const { return m_next; }
    /// Sets the following sheet (null to end the chain here).
    void next(AbstractSheet* const sheet) { m_next = sheet; }
    /// The sheet before in the chain, or null.
    AbstractSheet* previous() const { return m_previous; }
    /// Sets the sheet before (null to start the chain here).
    void previous(AbstractSheet* const sheet) { m_previous = sheet; }
    /// The parent sheet, or null for a top-level sheet.
    AbstractSheet* parent() const { return m_parent; }
    /// The child sheets in the order they were added.
    const std::vector<AbstractSheet*>& children() const { return m_children; }
    /// Appends `child` (once) and makes this sheet its parent.
    void addChild(AbstractSheet* child);
    /// Takes `child` out of the children and clears its parent; nothing is deleted.
    void removeChild(AbstractSheet* child);
    /// The sheet's widget, or null when none was set.
    QWidget* widget() const { return m_widget.data(); }
    /// True between activate() and deactivate() as the handler calls them.
    bool isActive() const { return m_active; }
    /// The handler given at construction.
    AbstractSheetHandler* getSheetHandler() const { return m_handler; }
    /// The sheet's item in the handler's tree while it is added, otherwise null.
    QTreeWidgetItem* treeItem() const { return m_item; }

protected:
    /// Gives the sheet its widget, which the sheet then owns. Call it before the sheet is added
    /// to a handler: the handler places the widget when the sheet is added.
    void setWidget(QWidget* widget);

private:
    friend class AbstractSheetHandler;

    QTreeWidgetItem* m_item = nullptr;
    QPointer<QWidget> m_widget;
    QString m_description;
    QString m_helpKey;
    AbstractSheetHandler* m_handler;
    AbstractSheet* m_previous = nullptr;
    AbstractSheet* m_next = nullptr;
    AbstractSheet* m_parent = nullptr;
    std::vector<AbstractSheet*> m_children;
    bool m_active = false;
};

} // namespace rkBase

#pragma once

#include "rkbaseqt_export.h"

#include <QTreeWidget>

namespace rkBase {

class AbstractSheetHandler;

/// \brief The tree of sheets beside a handler's current sheet.
///
/// Clicking an item (or pressing Enter on it, or moving to it with the keyboard) activates its
/// sheet. setWorkFlow() binds the tree's signals to the handler's operations, so anything that
/// emits them (a context menu, a shortcut) drives the handler.
class RKBASEQT_EXPORT WorkFlowTree : public QTreeWidget {
    Q_OBJECT

public:
    /// An empty tree without header.
    explicit WorkFlowTree(QWidget* parent = nullptr);
    ~WorkFlowTree() override;

    /// Binds the tree to `handler` (not owned; it must outlive the tree's use). Binding again
    /// replaces the former handler.
    void setWorkFlow(AbstractSheetHandler* handler);
    /// The bound handler, or null.
    AbstractSheetHandler* workFlow() const { return m_handler; }

public slots:
    /// Activates the sheet of `item`.
    void changeActiveItem(QTreeWidgetItem* item, int column);

signals:
    /// Asks the handler for the next sheet.
    void nextClicked();
    /// Asks the handler for the previous sheet.
    void previousClicked();
    /// Asks the handler for the description or help of the current sheet.
    void helpClicked();
    /// Asks the handler to close.
    void closeClicked();
    /// Asks the handler to restart.
    void restartClicked();
    /// Asks the handler to cancel the running operation.
    void cancelClicked();
    /// Asks the handler to follow a description link.
    void activate_description_link(const QUrl& url);

private:
    AbstractSheetHandler* m_handler = nullptr;
    QList<QMetaObject::Connection> m_connections;
};

} // namespace rkBase

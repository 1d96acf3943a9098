#include "wizards/WorkFlowTree.h"

#include "wizards/AbstractSheetHandler.h"

#include <QHeaderView>
#include <QUrl>

namespace rkBase {

WorkFlowTree::WorkFlowTree(QWidget* parent)
    : QTreeWidget(parent)
{
    setObjectName(QStringLiteral("mq_workflowtree"));
    setHeaderHidden(true);
    setColumnCount(1);
    setRootIsDecorated(true);
    connect(this, &QTreeWidget::itemClicked, this, &WorkFlowTree::changeActiveItem);
    connect(this, &QTreeWidget::itemActivated, this, &WorkFlowTree::changeActiveItem);
    // Keyboard moves change the current item without a click; the handler ignores the change
    // that it makes itself.
    connect(this, &QTreeWidget::currentItemChanged, this,
            [this](QTreeWidgetItem* current, QTreeWidgetItem*) { changeActiveItem(current, 0); });
}

WorkFlowTree::~WorkFlowTree() = default;

void WorkFlowTree::changeActiveItem(QTreeWidgetItem* item, int)
{
    if (m_handler && item)
        m_handler->activate_sheet(item);
}

void WorkFlowTree::setWorkFlow(AbstractSheetHandler* handler)
{
    for (const QMetaObject::Connection& c : m_connections)
        disconnect(c);
    m_connections.clear();
    m_handler = handler;
    if (!handler)
        return;
    // The handler is no QObject, so the tree is the context of every connection.
    m_connections << connect(this, &WorkFlowTree::nextClicked, this, [handler] { handler->activate_next_sheet(); })
                  << connect(this, &WorkFlowTree::previousClicked, this,
                             [handler] { handler->activate_previous_sheet(); })
                  << connect(this, &WorkFlowTree::helpClicked, this, [handler] { handler->toggle_description(); })
                  << connect(this, &WorkFlowTree::closeClicked, this, [handler] { handler->close(); })
                  << connect(this, &WorkFlowTree::restartClicked, this, [handler] { handler->restart(); })
                  << connect(this, &WorkFlowTree::cancelClicked, this, [handler] { handler->cancel_button_pressed(); })
                  << connect(this, &WorkFlowTree::activate_description_link, this,
                             [handler](const QUrl& url) { handler->activate_description_link(url); });
}

} // namespace rkBase

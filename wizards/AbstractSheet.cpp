#include "wizards/AbstractSheet.h"

#include <QCoreApplication>

#include <algorithm>
#include <unordered_set>

namespace rkBase {

AbstractSheet::AbstractSheet(AbstractSheetHandler* handler)
    : m_handler(handler)
{
}

AbstractSheet::AbstractSheet(AbstractSheetHandler* handler, AbstractSheet* const parent)
    : m_handler(handler)
{
    if (parent)
        parent->addChild(this);
}

AbstractSheet::~AbstractSheet()
{
    if (m_parent)
        m_parent->removeChild(this);
    for (AbstractSheet* child : m_children)
        child->m_parent = nullptr;
    delete m_widget.data();
}

void AbstractSheet::startup() {}

void AbstractSheet::shutdown()
{
    if (m_parent)
        m_parent->removeChild(this);
}

void AbstractSheet::suspend() {}
void AbstractSheet::resume() {}
void AbstractSheet::activate() {}
void AbstractSheet::deactivate() {}
void AbstractSheet::restart() {}
void AbstractSheet::update() {}

bool AbstractSheet::isComplete() { return false; }

bool AbstractSheet::isAvailable()
{
    // Asks the previous sheet's own isAvailable, so that an override there counts, but remembers
    // which sheets are being asked: a chain linked into a loop (a sheet made its own previous,
    // say) must answer rather than recurse until the stack runs out.
    static thread_local std::unordered_set<const AbstractSheet*> asking;
    if (!m_previous)
        return true;
    if (!asking.insert(this).second)
        return true;
    const bool available = m_previous->isComplete() && m_previous->isAvailable();
    asking.erase(this);
    return available;
}

QString AbstractSheet::title()
{
    if (m_widget)
        return m_widget->windowTitle();
    return QCoreApplication::translate("rkBase::AbstractSheet", "Unnamed Workflow");
}

void AbstractSheet::description(QString const& text) { m_description = text; }
QString AbstractSheet::description() { return m_description; }
QString AbstractSheet::helpkey() { return m_helpKey; }
void AbstractSheet::setHelpKey(QString const& key) { m_helpKey = key; }

void AbstractSheet::addChild(AbstractSheet* child)
{
    if (!child || child == this)
        return;
    if (child->m_parent && child->m_parent != this)
        child->m_parent->removeChild(child);
    child->m_parent = this;
    if (std::find(m_children.begin(), m_children.end(), child) == m_children.end())
        m_children.push_back(child);
}

void AbstractSheet::removeChild(AbstractSheet* child)
{
    auto it = std::find(m_children.begin(), m_children.end(), child);
    if (it == m_children.end())
        return;
    m_children.erase(it);
    child->m_parent = nullptr;
}

void AbstractSheet::setWidget(QWidget* widget)
{
    if (m_widget == widget)
        return;
    delete m_widget.data();
    m_widget = widget;
}

} // namespace rkBase

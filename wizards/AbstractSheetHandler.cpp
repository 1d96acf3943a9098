#include "wizards/AbstractSheetHandler.h"

#include "frame/rkProductInfo.h"
#include "wizards/AbstractSheet.h"
#include "wizards/WorkFlowTree.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDesktopServices>
#include <QFile>
#include <QLayout>
#include <QScrollArea>
#include <QSettings>
#include <QSplitter>
#include <QTextBrowser>
#include <QTextCodec>
#include <QUrl>
#include <QVBoxLayout>

#include <algorithm>

namespace rkBase {

namespace {
const char kSettingsGroup[] = "AbstractSheetHandler";
const char kShowDescriptionKey[] = "showDescription";
} // namespace

AbstractSheetHandler::AbstractSheetHandler() = default;

AbstractSheetHandler::~AbstractSheetHandler()
{
    // No virtual calls here: the subclass part is gone. Sheets still held are ours to delete;
    // their tree items go with the tree.
    std::vector<AbstractSheet*> sheets;
    sheets.swap(m_order);
    m_items.clear();
    for (auto it = sheets.rbegin(); it != sheets.rend(); ++it)
        delete *it;
}

QTreeWidget* AbstractSheetHandler::tree() const { return m_tree.data(); }

WorkFlowTree* AbstractSheetHandler::workFlowTree() const { return m_tree.data(); }

AbstractSheet* AbstractSheetHandler::getSheet(QString const& title)
{
    for (AbstractSheet* sheet : m_order)
        if (sheet->title() == title)
            return sheet;
    return nullptr;
}

bool AbstractSheetHandler::is_modal() { return false; }

void AbstractSheetHandler::close() {}

void AbstractSheetHandler::cancel_button_pressed() {}

void AbstractSheetHandler::placeWidget(AbstractSheet* sheet)
{
    QWidget* widget = sheet->widget();
    if (!widget || !m_sheetArea)
        return;
    widget->hide();
    if (!m_sheetArea->layout())
        new QVBoxLayout(m_sheetArea);
    m_sheetArea->layout()->addWidget(widget);
}

void AbstractSheetHandler::addItem(AbstractSheet* sheet, AbstractSheet* before)
{
    auto* item = new QTreeWidgetItem(QStringList{sheet->title()});
    item->setFlags(Qt::ItemIsSelectable | Qt::ItemIsEnabled);
    QTreeWidgetItem* parentItem = nullptr;
    if (sheet->parent()) {
        auto found = m_items.find(sheet->parent());
        if (found != m_items.end())
            parentItem = found->second;
    }
    QTreeWidgetItem* beforeItem = nullptr;
    if (before) {
        auto found = m_items.find(before);
        if (found != m_items.end())
            beforeItem = found->second;
    }
    if (beforeItem && beforeItem->parent() == parentItem) {
        if (parentItem)
            parentItem->insertChild(parentItem->indexOfChild(beforeItem), item);
        else if (m_tree)
            m_tree->insertTopLevelItem(m_tree->indexOfTopLevelItem(beforeItem), item);
    } else if (parentItem) {
        parentItem->addChild(item);
    } else if (m_tree) {
        m_tree->addTopLevelItem(item);
    }
    if (parentItem)
        parentItem->setExpanded(true);
    // Without a tree the item has no owner; keep it with the sheet so that remove_sheet frees it.
    sheet->m_item = item;
    m_items.emplace(sheet, item);
    auto pos = m_order.end();
    if (before) {
        auto found = std::find(m_order.begin(), m_order.end(), before);
        if (found != m_order.end())
            pos = found;
    }
    m_order.insert(pos, sheet);
    placeWidget(sheet);
    if (m_order.size() == 1 && !m_current)
        m_current = sheet;
}

void AbstractSheetHandler::add_sheet(AbstractSheet* sheet)
{
    if (!sheet || holds(sheet))
        return;
    addItem(sheet, nullptr);
    if (sheet->parent())
        m_last = sheet;
}

void AbstractSheetHandler::insert_sheet(AbstractSheet* sheet, AbstractSheet* before)
{
    if (!sheet || holds(sheet))
        return;
    if (!before || !holds(before)) {
        add_sheet(sheet);
        return;
    }
    addItem(sheet, before);
}

void AbstractSheetHandler::remove_sheet(AbstractSheet* sheet)
{
    if (!sheet)
        return;
    if (m_current == sheet)
        m_current = nullptr;
    if (m_last == sheet)
        m_last = sheet->previous();
    auto found = m_items.find(sheet);
    if (found == m_items.end())
        return;
    // A copy: an override of shutdown may or may not leave the parent.
    const std::vector<AbstractSheet*> children = sheet->children();
    for (AbstractSheet* child : children) {
        child->shutdown();
        sheet->removeChild(child);
        remove_sheet(child);
        delete child;
    }
    QTreeWidgetItem* item = found->second;
    delete item; // takes itself out of its parent item or the tree
    sheet->m_item = nullptr;
    sheet->m_active = false;
    if (QWidget* widget = sheet->widget()) {
        if (m_sheetArea && m_sheetArea->layout())
            m_sheetArea->layout()->removeWidget(widget);
        widget->hide();
        widget->setParent(nullptr);
    }
    m_items.erase(sheet);
    m_order.erase(std::remove(m_order.begin(), m_order.end(), sheet), m_order.end());
}

void AbstractSheetHandler::activate_sheet(QTreeWidgetItem* item)
{
    if (!item)
        return;
    for (const auto& pair : m_items)
        if (pair.second == item) {
            activate_sheet(pair.first, false);
            return;
        }
}

void AbstractSheetHandler::activate_sheet(AbstractSheet* sheet, bool updateTree)
{
    if (m_settingTreeItem || !sheet || !holds(sheet))
        return;
    if (m_current && m_current->m_active) {
        m_current->deactivate();
        m_current->m_active = false;
    }
    if (m_sheetArea)
        m_sheetArea->setUpdatesEnabled(false);
    for (AbstractSheet* other : m_order)
        if (other != sheet && other->widget())
            other->widget()->hide();
    if (m_sheetArea)
        m_sheetArea->setUpdatesEnabled(true);
    if (sheet->widget())
        sheet->widget()->show();
    m_current = sheet;
    if (updateTree && m_tree) {
        m_settingTreeItem = true;
        m_tree->setCurrentItem(sheet->m_item);
        m_settingTreeItem = false;
    }
    const bool available = sheet->isAvailable();
    if (m_descriptionView)
        m_descriptionView->setEnabled(available);
    if (sheet->widget())
        sheet->widget()->setEnabled(available);
    if (available) {
        sheet->m_active = true;
        sheet->activate();
    }
    update_navigation();
}

void AbstractSheetHandler::activate_next_sheet()
{
    if (m_current && m_current->isComplete() && m_current->next())
        activate_sheet(m_current->next(), true);
}

void AbstractSheetHandler::activate_previous_sheet()
{
    if (m_current && m_current->previous())
        activate_sheet(m_current->previous(), true);
}

void AbstractSheetHandler::update_navigation()
{
    if (!m_current)
        return;
    const bool available = m_current->isAvailable();
    if (m_nextButton)
        m_nextButton->setEnabled(m_current->isComplete() && m_current->next() && available);
    if (m_previousButton)
        m_previousButton->setEnabled(m_current->previous() && available);

    QString text = m_current->description();
    const QString key = m_current->helpkey();
    if (text.isEmpty()) {
        if (m_descriptionView) {
            m_descriptionView->clear();
            m_descriptionView->hide();
        }
        if (m_helpButton) {
            m_helpButton->setVisible(!key.isEmpty());
            m_helpButton->setEnabled(!key.isEmpty());
        }
        return;
    }
    if (text.startsWith(QLatin1Char(':'))) {
        QFile file(text);
        if (file.open(QIODevice::ReadOnly)) {
            const QByteArray bytes = file.readAll();
            text = QTextCodec::codecForHtml(bytes)->toUnicode(bytes);
        }
    }
    if (!key.isEmpty())
        text += QStringLiteral("<div align='right' style='padding-top:10px'><a href='help:") + key +
                QStringLiteral("'>more&nbsp;help</a></div>");
    if (m_helpButton) {
        m_helpButton->show();
        m_helpButton->setEnabled(true);
    }
    if (m_descriptionView) {
        m_descriptionView->setHtml(text);
        if (m_showDescription && m_descriptionView->isHidden())
            m_descriptionView->show();
    }
}

void AbstractSheetHandler::openHelp(const QString& key)
{
    if (is_modal())
        rkProductInfo::instance().onShowHelpExternal(key);
    else
        rkProductInfo::instance().showHelp(key);
}

void AbstractSheetHandler::toggle_description()
{
    if (!m_descriptionView || m_descriptionView->toPlainText().isEmpty()) {
        if (m_current && !m_current->helpkey().isEmpty())
            openHelp(m_current->helpkey());
        return;
    }
    m_showDescription = !m_showDescription;
    if (m_showDescription) {
        m_descriptionView->show();
        if (m_splitter && m_splitter->indexOf(m_descriptionView) >= 0) {
            QList<int> sizes = m_splitter->sizes();
            if (!sizes.isEmpty() && sizes.last() < 20) {
                sizes.last() = 20;
                m_splitter->setSizes(sizes);
            }
        }
    } else {
        m_descriptionView->hide();
    }
}

void AbstractSheetHandler::activate_description_link(const QUrl& url)
{
    const QString scheme = url.scheme().toLower();
    if (scheme == QLatin1String("help")) {
        rkProductInfo::instance().showHelp(url.path());
    } else if (scheme == QLatin1String("sheet")) {
        const QString path = url.path();
        if (path == QLatin1String("previous")) {
            activate_previous_sheet();
        } else if (path == QLatin1String("next")) {
            activate_next_sheet();
        } else if (AbstractSheet* sheet = getSheet(path)) {
            activate_sheet(sheet, true);
            return;
        } else {
            QApplication::beep();
        }
    } else if (scheme == QLatin1String("http") || scheme == QLatin1String("https")) {
        QDesktopServices::openUrl(url);
    } else {
        QApplication::beep();
    }
    update_navigation();
}

void AbstractSheetHandler::startup()
{
    if (m_running)
        return;
    QSettings settings;
    settings.beginGroup(QLatin1String(kSettingsGroup));
    m_showDescription = settings.value(QLatin1String(kShowDescriptionKey), false).toBool();
    settings.endGroup();

    if (m_tree)
        m_tree->setWorkFlow(this);
    if (m_descriptionView) {
        // Links are ours to follow (help pages, other sheets); the view must not navigate itself.
        m_descriptionView->setOpenLinks(false);
        QObject::connect(m_descriptionView, &QTextBrowser::anchorClicked, m_descriptionView,
                         [this](const QUrl& url) { activate_description_link(url); });
    }
    if (m_nextButton)
        QObject::connect(m_nextButton, &QAbstractButton::clicked, m_nextButton, [this] { activate_next_sheet(); });
    if (m_previousButton)
        QObject::connect(m_previousButton, &QAbstractButton::clicked, m_previousButton,
                         [this] { activate_previous_sheet(); });
    if (m_helpButton)
        QObject::connect(m_helpButton, &QAbstractButton::clicked, m_helpButton, [this] { toggle_description(); });
    m_running = true;

    populate_sheets();

    if (m_splitter && m_sheetArea) {
        QWidget* holder = m_sheetArea;
        auto* scroll = qobject_cast<QScrollArea*>(m_sheetArea->parentWidget()
                                                      ? m_sheetArea->parentWidget()->parentWidget()
                                                      : nullptr);
        if (!scroll || scroll->widget() != m_sheetArea) {
            scroll = new QScrollArea;
            scroll->setWidget(m_sheetArea);
        }
        scroll->setWidgetResizable(true);
        holder = scroll;
        if (m_splitter->indexOf(holder) != 1)
            m_splitter->insertWidget(1, holder);
        m_splitter->setStretchFactor(0, 1);
        m_splitter->setStretchFactor(1, 20);
    }
    const std::vector<AbstractSheet*> sheets = m_order;
    for (AbstractSheet* sheet : sheets)
        sheet->startup();
    if (m_activateFirstSheet && m_current)
        activate_sheet(m_current, true);
}

void AbstractSheetHandler::shutdown()
{
    if (m_descriptionView) {
        // Only a handler that shows descriptions owns the user's choice; one without a view
        // would overwrite it with its own default.
        QSettings settings;
        settings.beginGroup(QLatin1String(kSettingsGroup));
        settings.setValue(QLatin1String(kShowDescriptionKey), m_showDescription);
        settings.endGroup();
    }
    const std::size_t rounds = m_order.size();
    for (std::size_t i = 0; i < rounds && !m_order.empty(); ++i) {
        AbstractSheet* sheet = m_order.front();
        remove_sheet(sheet);
        if (holds(sheet))
            break; // an override refused to let go; the destructor deletes what is left
        delete sheet;
    }
    m_running = false;
}

void AbstractSheetHandler::restart()
{
    const std::vector<AbstractSheet*> sheets = m_order;
    for (AbstractSheet* sheet : sheets)
        sheet->restart();
    AbstractSheet* first = nullptr;
    if (m_tree && m_tree->topLevelItemCount() > 0) {
        QTreeWidgetItem* item = m_tree->topLevelItem(0);
        for (const auto& pair : m_items)
            if (pair.second == item)
                first = pair.first;
    }
    if (first)
        activate_sheet(first, true);
}

} // namespace rkBase

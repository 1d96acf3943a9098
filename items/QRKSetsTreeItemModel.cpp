#include "items/QRKSetsTreeItemModel.h"

#include "items/QRKAbstractSubject.h"

namespace rkBase {

namespace {
struct SetsFolder {
    const char* name;
    int sortField;
};
const SetsFolder kFolders[] = {
    {"1. Surfaces", Field::Name},     {"2. Horizons", Field::SortFirst}, {"3. Sections", Field::Name},
    {"4. Fault Blocks", Field::Name}, {"5. Fracture Sets", Field::Name}, {"6. Sets", Field::Name},
};
static_assert(sizeof(kFolders) / sizeof(kFolders[0]) == QRKSetsTreeItemModel::FolderCount, "one row per folder");

// The order in which a second restart empties the folders.
const int kClearOrder[] = {QRKSetsTreeItemModel::FractureSetFolder, QRKSetsTreeItemModel::SurfaceFolder,
                           QRKSetsTreeItemModel::HorizonFolder,     QRKSetsTreeItemModel::SectionFolder,
                           QRKSetsTreeItemModel::FaultBlockFolder,  QRKSetsTreeItemModel::SetFolder};
} // namespace

QRKSetsTreeItemModel::QRKSetsTreeItemModel(QRKAbstractModelBrowserData* browserData, QObject* parent)
    : QRKAbstractTreeItemModel(browserData, parent)
{
}

QString QRKSetsTreeItemModel::folderName(int id)
{
    return id >= 0 && id < FolderCount ? QString::fromLatin1(kFolders[id].name) : QString();
}

void QRKSetsTreeItemModel::restart()
{
    if (m_root) {
        // Later calls drop the contents and keep the folders.
        for (int id : kClearOrder)
            clearNodes(m_folders[id]);
        return;
    }
    beginResetModel();
    auto* root = new QRKSimpleFolderNode(QStringLiteral("root"), nullptr, this);
    root->setSortField(Field::None);
    root->setCheckable(false);
    m_root = root;
    for (int id = 0; id < FolderCount; ++id) {
        auto* f = static_cast<QRKSimpleFolderNode*>(createDefaultFolderNode(folderName(id), m_root, this));
        f->setSortField(kFolders[id].sortField);
        f->setExpanded(true);
        f->setCheckable(false);
        m_folders[id] = f;
    }
    endResetModel();
}

QRKAbstractItemModelNode* QRKSetsTreeItemModel::addSubjectTo(int id, QRKAbstractSubject* subject)
{
    if (!subject || !folder(id))
        return nullptr;
    QRKAbstractItemModelNode* node = subject->createTreeNode(this);
    if (!node)
        return nullptr;
    addNodeTo(id, node);
    return node;
}

void QRKSetsTreeItemModel::addNodeTo(int id, QRKAbstractItemModelNode* node)
{
    QRKAbstractItemModelCompoundNode* f = folder(id);
    if (!f || !m_root || !node)
        return;
    if (m_root->childIndex(f) == -1)
        addNode(f, m_root);
    addNode(node, f);
}

} // namespace rkBase

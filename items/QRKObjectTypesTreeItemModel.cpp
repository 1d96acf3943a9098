#include "items/QRKObjectTypesTreeItemModel.h"

#include "core/rkTranslator.h"
#include "items/QRKAbstractSubject.h"

namespace rkBase {

namespace {
// Folder names in member order. The "Wells" family goes through the translator and keeps its
// English suffix; the rest are used as they stand.
const char* const kFolderNames[] = {"Mesh Surfaces",
                                    "Grid Surfaces",
                                    "Guide Lines",
                                    "Polylines",
                                    "Trace Lines",
                                    "Faults",
                                    "Pins",
                                    "Posts",
                                    "Polygons",
                                    "TetraVolumes",
                                    "GeoCellular Volumes",
                                    "Point Clouds",
                                    "Dip Data",
                                    "Wells",
                                    "Wells (Projected)",
                                    "Wells (Pseudo)",
                                    "Labels",
                                    "3DTesk Fracture Sets",
                                    "4DTesk Fracture Sets",
                                    "Stratigraphic Columns",
                                    "Images",
                                    "osgEarth Layers"};
static_assert(sizeof(kFolderNames) / sizeof(kFolderNames[0]) == QRKObjectTypesTreeItemModel::FolderCount,
              "one name per folder");
} // namespace

QRKObjectTypesTreeItemModel::QRKObjectTypesTreeItemModel(QRKAbstractModelBrowserData* browserData, QObject* parent)
    : QRKAbstractTreeItemModel(browserData, parent)
{
}

QString QRKObjectTypesTreeItemModel::folderName(int id)
{
    if (id < 0 || id >= FolderCount)
        return QString();
    switch (id) {
    case WellFolder:
        return rkTranslator::tr("Wells");
    case ProjectedWellFolder:
        return rkTranslator::tr("Wells") + QStringLiteral(" (Projected)");
    case PseudoWellFolder:
        return rkTranslator::tr("Wells") + QStringLiteral(" (Pseudo)");
    default:
        return QString::fromLatin1(kFolderNames[id]);
    }
}

void QRKObjectTypesTreeItemModel::restart()
{
    if (m_root)
        return;
    beginResetModel();
    auto* root = new QRKSimpleFolderNode(QStringLiteral("root"), nullptr, this);
    root->setSortField(Field::None);
    root->setCheckable(false);
    m_root = root;
    for (int id = 0; id < FolderCount; ++id)
        m_folders[id] = createDefaultFolderNode(folderName(id), m_root, this);
    endResetModel();
}

QRKAbstractItemModelNode* QRKObjectTypesTreeItemModel::addSubjectTo(int id, QRKAbstractSubject* subject)
{
    if (!subject || !folder(id))
        return nullptr;
    QRKAbstractItemModelNode* node = subject->createTreeNode(this);
    if (!node)
        return nullptr;
    addNodeTo(id, node);
    return node;
}

void QRKObjectTypesTreeItemModel::addNodeTo(int id, QRKAbstractItemModelNode* node)
{
    QRKAbstractItemModelCompoundNode* f = folder(id);
    if (!f || !m_root || !node)
        return;
    if (m_root->childIndex(f) == -1)
        addNode(f, m_root);
    addNode(node, f);
}

} // namespace rkBase

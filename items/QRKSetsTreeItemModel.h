#pragma once

#include "items/QRKAbstractItemModel.h"
#include "items/QRKAbstractItemModelNode.h"

#include <array>

namespace rkBase {

/// \brief The document's objects grouped by role: surfaces, horizons, sections, fault blocks,
/// fracture sets and sets.
///
/// A folder shows once it has received an object. A second restart() empties the folders and
/// keeps them.
class RKBASEQT_EXPORT QRKSetsTreeItemModel : public QRKAbstractTreeItemModel {
    Q_OBJECT
public:
    /// The six folders, in their order.
    enum FolderId {
        SurfaceFolder,     ///< "1. Surfaces"
        HorizonFolder,     ///< "2. Horizons", sorted by field -13
        SectionFolder,     ///< "3. Sections"
        FaultBlockFolder,  ///< "4. Fault Blocks"
        FractureSetFolder, ///< "5. Fracture Sets"
        SetFolder,         ///< "6. Sets"
        FolderCount        ///< number of folders
    };

    /// An empty tree; call restart() to build the folders.
    explicit QRKSetsTreeItemModel(QRKAbstractModelBrowserData* browserData = nullptr, QObject* parent = nullptr);

    /// Builds the folders the first time; later calls empty them.
    void restart() override;
    /// Hides the folders that have become empty.
    bool clearEmptyChildren() { return QRKAbstractTreeItemModel::clearEmptyChildren(m_root); }
    using QRKAbstractTreeItemModel::clearEmptyChildren;
    /// The folder `id`, null before restart() or out of range.
    QRKAbstractItemModelCompoundNode* folder(int id) const
    {
        return id >= 0 && id < FolderCount ? m_folders[id] : nullptr;
    }
    /// The folder name of `id`.
    static QString folderName(int id);

    /// Adds `subject` to folder `id`: its tree node, or null when the subject makes none or the folder is missing.
    QRKAbstractItemModelNode* addSubjectTo(int id, QRKAbstractSubject* subject);
    /// Adds `node` to folder `id`; nothing when the folder does not exist yet.
    void addNodeTo(int id, QRKAbstractItemModelNode* node);

    /// Adds a surface; its node or null.
    QRKAbstractItemModelNode* addSurface(QRKAbstractSubject* subject) { return addSubjectTo(SurfaceFolder, subject); }
    /// Adds a surface node.
    void addSurface(QRKAbstractItemModelNode* node) { addNodeTo(SurfaceFolder, node); }
    /// Adds a horizon (ordered by field -13, then name); its node or null.
    QRKAbstractItemModelNode* addHorizon(QRKAbstractSubject* subject) { return addSubjectTo(HorizonFolder, subject); }
    /// Adds a horizon node.
    void addHorizon(QRKAbstractItemModelNode* node) { addNodeTo(HorizonFolder, node); }
    /// Adds a section; its node or null.
    QRKAbstractItemModelNode* addSection(QRKAbstractSubject* subject) { return addSubjectTo(SectionFolder, subject); }
    /// Adds a section node.
    void addSection(QRKAbstractItemModelNode* node) { addNodeTo(SectionFolder, node); }
    /// Adds a fault block; its node or null.
    QRKAbstractItemModelNode* addFaultBlock(QRKAbstractSubject* subject)
    {
        return addSubjectTo(FaultBlockFolder, subject);
    }
    /// Adds a fault block node.
    void addFaultBlock(QRKAbstractItemModelNode* node) { addNodeTo(FaultBlockFolder, node); }
    /// Adds a fracture set; its node or null.
    QRKAbstractItemModelNode* addFractureSet(QRKAbstractSubject* subject)
    {
        return addSubjectTo(FractureSetFolder, subject);
    }
    /// Adds a fracture set node.
    void addFractureSet(QRKAbstractItemModelNode* node) { addNodeTo(FractureSetFolder, node); }
    /// Adds a set; its node or null.
    QRKAbstractItemModelNode* addSet(QRKAbstractSubject* subject) { return addSubjectTo(SetFolder, subject); }
    /// Adds a set node.
    void addSet(QRKAbstractItemModelNode* node) { addNodeTo(SetFolder, node); }

private:
    std::array<QRKAbstractItemModelCompoundNode*, FolderCount> m_folders{};
};

} // namespace rkBase

#pragma once

#include "items/QRKAbstractItemModel.h"
#include "items/QRKAbstractItemModelNode.h"

#include <array>

namespace rkBase {

/// \brief The document's objects grouped by kind, one folder per kind.
///
/// The folders exist from the first restart() on, but a folder shows only once it has received
/// an object; clearEmptyChildren() hides emptied ones again. Later restarts change nothing.
class RKBASEQT_EXPORT QRKObjectTypesTreeItemModel : public QRKAbstractTreeItemModel {
    Q_OBJECT
public:
    /// The folders, in the order of their members.
    enum FolderId {
        MeshSurfaceFolder,     ///< "Mesh Surfaces"
        GridFolder,            ///< "Grid Surfaces"
        GuideLineFolder,       ///< "Guide Lines"
        LineFolder,            ///< "Polylines"
        TraceLineFolder,       ///< "Trace Lines"
        FaultFolder,           ///< "Faults"
        PinFolder,             ///< "Pins"
        PostFolder,            ///< "Posts"
        PolygonFolder,         ///< "Polygons"
        TetraVolumeFolder,     ///< "TetraVolumes"
        GeoCellularGridFolder, ///< "GeoCellular Volumes"
        PointCloudFolder,      ///< "Point Clouds"
        DipDataFolder,         ///< "Dip Data"
        WellFolder,            ///< "Wells"
        ProjectedWellFolder,   ///< "Wells (Projected)"
        PseudoWellFolder,      ///< "Wells (Pseudo)"
        LabelFolder,           ///< "Labels"
        TeskFracture3DFolder,  ///< "3DTesk Fracture Sets"
        TeskFracture4DFolder,  ///< "4DTesk Fracture Sets"
        StratColumnFolder,     ///< "Stratigraphic Columns"
        ImageFolder,           ///< "Images"
        OSGEarthLayerFolder,   ///< "osgEarth Layers"
        FolderCount            ///< number of folders
    };

    /// An empty tree; call restart() to build the folders.
    explicit QRKObjectTypesTreeItemModel(QRKAbstractModelBrowserData* browserData = nullptr, QObject* parent = nullptr);

    /// Builds the root and the folders the first time; later calls change nothing.
    void restart() override;
    /// Hides the folders that have become empty.
    bool clearEmptyChildren() { return QRKAbstractTreeItemModel::clearEmptyChildren(m_root); }
    using QRKAbstractTreeItemModel::clearEmptyChildren;
    /// The folder `id`, null before restart() or out of range.
    QRKAbstractItemModelCompoundNode* folder(int id) const
    {
        return id >= 0 && id < FolderCount ? m_folders[id] : nullptr;
    }
    /// The folder name of `id` as shown (before the count).
    static QString folderName(int id);

    /// Adds `subject` to folder `id`: its tree node, or null when the subject makes none.
    QRKAbstractItemModelNode* addSubjectTo(int id, QRKAbstractSubject* subject);
    /// Adds `node` to folder `id`, first putting the folder under the root when it is not there.
    void addNodeTo(int id, QRKAbstractItemModelNode* node);

    /// Adds `subject` to "Mesh Surfaces"; the new node, or null when the subject makes none.
    QRKAbstractItemModelNode* addMeshSurface(QRKAbstractSubject* subject)
    {
        return addSubjectTo(MeshSurfaceFolder, subject);
    }
    /// Adds `node` to "Mesh Surfaces", showing the folder with its first object.
    void addMeshSurface(QRKAbstractItemModelNode* node) { addNodeTo(MeshSurfaceFolder, node); }
    /// The folder "Mesh Surfaces", null before restart().
    QRKAbstractItemModelCompoundNode* meshFolder() const { return folder(MeshSurfaceFolder); }
    /// Adds `subject` to "Grid Surfaces"; the new node, or null when the subject makes none.
    QRKAbstractItemModelNode* addGrid2(QRKAbstractSubject* subject) { return addSubjectTo(GridFolder, subject); }
    /// Adds `node` to "Grid Surfaces", showing the folder with its first object.
    void addGrid2(QRKAbstractItemModelNode* node) { addNodeTo(GridFolder, node); }
    /// The folder "Grid Surfaces", null before restart().
    QRKAbstractItemModelCompoundNode* gridFolder() const { return folder(GridFolder); }
    /// Adds `subject` to "Guide Lines"; the new node, or null when the subject makes none.
    QRKAbstractItemModelNode* addGuideLine(QRKAbstractSubject* subject)
    {
        return addSubjectTo(GuideLineFolder, subject);
    }
    /// Adds `node` to "Guide Lines", showing the folder with its first object.
    void addGuideLine(QRKAbstractItemModelNode* node) { addNodeTo(GuideLineFolder, node); }
    /// The folder "Guide Lines", null before restart().
    QRKAbstractItemModelCompoundNode* guideLineFolder() const { return folder(GuideLineFolder); }
    /// Adds `subject` to "Polylines"; the new node, or null when the subject makes none.
    QRKAbstractItemModelNode* addLine(QRKAbstractSubject* subject) { return addSubjectTo(LineFolder, subject); }
    /// Adds `node` to "Polylines", showing the folder with its first object.
    void addLine(QRKAbstractItemModelNode* node) { addNodeTo(LineFolder, node); }
    /// The folder "Polylines", null before restart().
    QRKAbstractItemModelCompoundNode* lineFolder() const { return folder(LineFolder); }
    /// Adds `subject` to "Trace Lines"; the new node, or null when the subject makes none.
    QRKAbstractItemModelNode* addTraceLine(QRKAbstractSubject* subject)
    {
        return addSubjectTo(TraceLineFolder, subject);
    }
    /// Adds `node` to "Trace Lines", showing the folder with its first object.
    void addTraceLine(QRKAbstractItemModelNode* node) { addNodeTo(TraceLineFolder, node); }
    /// The folder "Trace Lines", null before restart().
    QRKAbstractItemModelCompoundNode* traceLineFolder() const { return folder(TraceLineFolder); }
    /// Adds `subject` to "Faults"; the new node, or null when the subject makes none.
    QRKAbstractItemModelNode* addFault(QRKAbstractSubject* subject) { return addSubjectTo(FaultFolder, subject); }
    /// Adds `node` to "Faults", showing the folder with its first object.
    void addFault(QRKAbstractItemModelNode* node) { addNodeTo(FaultFolder, node); }
    /// The folder "Faults", null before restart().
    QRKAbstractItemModelCompoundNode* faultFolder() const { return folder(FaultFolder); }
    /// Adds `subject` to "Pins"; the new node, or null when the subject makes none.
    QRKAbstractItemModelNode* addPin(QRKAbstractSubject* subject) { return addSubjectTo(PinFolder, subject); }
    /// Adds `node` to "Pins", showing the folder with its first object.
    void addPin(QRKAbstractItemModelNode* node) { addNodeTo(PinFolder, node); }
    /// The folder "Pins", null before restart().
    QRKAbstractItemModelCompoundNode* pinFolder() const { return folder(PinFolder); }
    /// Adds `subject` to "Posts"; the new node, or null when the subject makes none.
    QRKAbstractItemModelNode* addPost(QRKAbstractSubject* subject) { return addSubjectTo(PostFolder, subject); }
    /// Adds `node` to "Posts", showing the folder with its first object.
    void addPost(QRKAbstractItemModelNode* node) { addNodeTo(PostFolder, node); }
    /// The folder "Posts", null before restart().
    QRKAbstractItemModelCompoundNode* postFolder() const { return folder(PostFolder); }
    /// Adds `subject` to "Polygons"; the new node, or null when the subject makes none.
    QRKAbstractItemModelNode* addPolygon(QRKAbstractSubject* subject) { return addSubjectTo(PolygonFolder, subject); }
    /// Adds `node` to "Polygons", showing the folder with its first object.
    void addPolygon(QRKAbstractItemModelNode* node) { addNodeTo(PolygonFolder, node); }
    /// The folder "Polygons", null before restart().
    QRKAbstractItemModelCompoundNode* polygonFolder() const { return folder(PolygonFolder); }
    /// Adds `subject` to "TetraVolumes"; the new node, or null when the subject makes none.
    QRKAbstractItemModelNode* addTetraVolume(QRKAbstractSubject* subject)
    {
        return addSubjectTo(TetraVolumeFolder, subject);
    }
    /// Adds `node` to "TetraVolumes", showing the folder with its first object.
    void addTetraVolume(QRKAbstractItemModelNode* node) { addNodeTo(TetraVolumeFolder, node); }
    /// Adds `subject` to "GeoCellular Volumes"; the new node, or null when the subject makes none.
    QRKAbstractItemModelNode* addGeoCellularGrid(QRKAbstractSubject* subject)
    {
        return addSubjectTo(GeoCellularGridFolder, subject);
    }
    /// Adds `node` to "GeoCellular Volumes", showing the folder with its first object.
    void addGeoCellularGrid(QRKAbstractItemModelNode* node) { addNodeTo(GeoCellularGridFolder, node); }
    /// Adds `subject` to "Point Clouds"; the new node, or null when the subject makes none.
    QRKAbstractItemModelNode* addPointCloud(QRKAbstractSubject* subject)
    {
        return addSubjectTo(PointCloudFolder, subject);
    }
    /// Adds `node` to "Point Clouds", showing the folder with its first object.
    void addPointCloud(QRKAbstractItemModelNode* node) { addNodeTo(PointCloudFolder, node); }
    /// The folder "Point Clouds", null before restart().
    QRKAbstractItemModelCompoundNode* pointCloudFolder() const { return folder(PointCloudFolder); }
    /// Adds `subject` to "Dip Data"; the new node, or null when the subject makes none.
    QRKAbstractItemModelNode* addDipData(QRKAbstractSubject* subject) { return addSubjectTo(DipDataFolder, subject); }
    /// Adds `node` to "Dip Data", showing the folder with its first object.
    void addDipData(QRKAbstractItemModelNode* node) { addNodeTo(DipDataFolder, node); }
    /// The folder "Dip Data", null before restart().
    QRKAbstractItemModelCompoundNode* dipDataFolder() const { return folder(DipDataFolder); }
    /// Adds `subject` to "Wells"; the new node, or null when the subject makes none.
    QRKAbstractItemModelNode* addWell(QRKAbstractSubject* subject) { return addSubjectTo(WellFolder, subject); }
    /// Adds `node` to "Wells", showing the folder with its first object.
    void addWell(QRKAbstractItemModelNode* node) { addNodeTo(WellFolder, node); }
    /// The folder "Wells", null before restart().
    QRKAbstractItemModelCompoundNode* wellFolder() const { return folder(WellFolder); }
    /// Adds `subject` to "Wells (Projected)"; the new node, or null when the subject makes none.
    QRKAbstractItemModelNode* addProjectedWell(QRKAbstractSubject* subject)
    {
        return addSubjectTo(ProjectedWellFolder, subject);
    }
    /// Adds `node` to "Wells (Projected)", showing the folder with its first object.
    void addProjectedWell(QRKAbstractItemModelNode* node) { addNodeTo(ProjectedWellFolder, node); }
    /// The folder "Wells (Projected)", null before restart().
    QRKAbstractItemModelCompoundNode* projectedWellFolder() const { return folder(ProjectedWellFolder); }
    /// Adds `subject` to "Wells (Pseudo)"; the new node, or null when the subject makes none.
    QRKAbstractItemModelNode* addPseudoWell(QRKAbstractSubject* subject)
    {
        return addSubjectTo(PseudoWellFolder, subject);
    }
    /// Adds `node` to "Wells (Pseudo)", showing the folder with its first object.
    void addPseudoWell(QRKAbstractItemModelNode* node) { addNodeTo(PseudoWellFolder, node); }
    /// The folder "Wells (Pseudo)", null before restart().
    QRKAbstractItemModelCompoundNode* pseudoWellFolder() const { return folder(PseudoWellFolder); }
    /// Adds `subject` to "Labels"; the new node, or null when the subject makes none.
    QRKAbstractItemModelNode* addLabel(QRKAbstractSubject* subject) { return addSubjectTo(LabelFolder, subject); }
    /// Adds `node` to "Labels", showing the folder with its first object.
    void addLabel(QRKAbstractItemModelNode* node) { addNodeTo(LabelFolder, node); }
    /// The folder "Labels", null before restart().
    QRKAbstractItemModelCompoundNode* labelFolder() const { return folder(LabelFolder); }
    /// Adds `subject` to "3DTesk Fracture Sets"; the new node, or null when the subject makes none.
    QRKAbstractItemModelNode* add3DTeskFractureSet(QRKAbstractSubject* subject)
    {
        return addSubjectTo(TeskFracture3DFolder, subject);
    }
    /// Adds `node` to "3DTesk Fracture Sets", showing the folder with its first object.
    void add3DTeskFractureSet(QRKAbstractItemModelNode* node) { addNodeTo(TeskFracture3DFolder, node); }
    /// Adds `subject` to "4DTesk Fracture Sets"; the new node, or null when the subject makes none.
    QRKAbstractItemModelNode* add4DTeskFractureSet(QRKAbstractSubject* subject)
    {
        return addSubjectTo(TeskFracture4DFolder, subject);
    }
    /// Adds `node` to "4DTesk Fracture Sets", showing the folder with its first object.
    void add4DTeskFractureSet(QRKAbstractItemModelNode* node) { addNodeTo(TeskFracture4DFolder, node); }
    /// Adds `subject` to "Images"; the new node, or null when the subject makes none.
    QRKAbstractItemModelNode* addImage(QRKAbstractSubject* subject) { return addSubjectTo(ImageFolder, subject); }
    /// Adds `node` to "Images", showing the folder with its first object.
    void addImage(QRKAbstractItemModelNode* node) { addNodeTo(ImageFolder, node); }
    /// The folder "Images", null before restart().
    QRKAbstractItemModelCompoundNode* imageFolder() const { return folder(ImageFolder); }
    /// Adds `subject` to "osgEarth Layers"; the new node, or null when the subject makes none.
    QRKAbstractItemModelNode* addOSGEarthLayer(QRKAbstractSubject* subject)
    {
        return addSubjectTo(OSGEarthLayerFolder, subject);
    }
    /// Adds `node` to "osgEarth Layers", showing the folder with its first object.
    void addOSGEarthLayer(QRKAbstractItemModelNode* node) { addNodeTo(OSGEarthLayerFolder, node); }
    /// The folder "osgEarth Layers", null before restart().
    QRKAbstractItemModelCompoundNode* osgEarthLayerFolder() const { return folder(OSGEarthLayerFolder); }

private:
    std::array<QRKAbstractItemModelCompoundNode*, FolderCount> m_folders{};
};

} // namespace rkBase

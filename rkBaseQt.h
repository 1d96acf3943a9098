#pragma once
/// \file rkBaseQt.h
/// \brief One include for everything the library exports.

#include "rkBaseQtVersion.h"
#include "rkbaseqt_export.h"

#include "core/GDALException.h"
#include "core/TripleDouble.h"
#include "core/rkAbstractFactory.h"
#include "core/rkDestructor.h"
#include "core/rkTranslator.h"
#include "core/rkUtils.h"

#include "frame/AbstractProgress.h"
#include "frame/Environment.h"
#include "frame/LicenceOverlay.h"
#include "frame/ProgressWidget.h"
#include "frame/QDefaultProgress.h"
#include "frame/rkProductInfo.h"

#include "units/DisplayUnitManager.h"
#include "units/UnitManager.h"
#include "units/UnitManagers.h"
#include "units/UnitRegistry.h"

#include "archive/RKUnzip.h"
#include "archive/RKZip.h"

#include "colour/HSVInterpolator.h"
#include "colour/QColormapWidget.h"
#include "colour/RKColormap.h"

#include "matrix/AbstractMatrixDataID.h"
#include "matrix/MatrixData.h"
#include "matrix/MatrixDataRestore.h"
#include "matrix/SymmetricEigen.h"

#include "items/QRKAbstractItemModel.h"
#include "items/QRKAbstractItemModelNode.h"
#include "items/QRKAbstractSubject.h"
#include "items/QRKObjectTypesTreeItemModel.h"
#include "items/QRKSetsTreeItemModel.h"
#include "items/QRKSortFilterProxyModel.h"
#include "items/QRKTableItemModel.h"
#include "metadata/Exif.h"
#include "metadata/File.h"
#include "metadata/Image.h"
#include "metadata/Iptc.h"
#include "metadata/Jpeg.h"
#include "metadata/Standard.h"
#include "metadata/Tiff.h"
#include "metadata/TiffHeader.h"
#include "metadata/Xmp.h"

#include "wizards/AbstractSheet.h"
#include "wizards/AbstractSheetHandler.h"
#include "wizards/Wizard.h"
#include "wizards/WizardForm.h"
#include "wizards/WizardProgress.h"
#include "wizards/WorkFlowTree.h"

#include "coordinates/RKCoordinateSystem.h"
#include "frame/GDALErrorHandler.h"

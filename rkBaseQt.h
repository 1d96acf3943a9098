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
#include "frame/rkProductInfo.h"

#include "units/DisplayUnitManager.h"
#include "units/UnitManager.h"
#include "units/UnitManagers.h"
#include "units/UnitRegistry.h"

#include "matrix/MatrixData.h"

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
#include "coordinates/RKCoordinateSystem.h"
#include "frame/GDALErrorHandler.h"

#pragma once

#include "OdDb.h"
#include "OdDbLayerTableRecord.h"
#include "OdString.h"
#include "OdVariant.h"
#include "StExport.h"

// A layer's properties as the values a standards check compares, and the texts of
// linetypes and lineweights. `layer` must be open for read and not null.
namespace st {

// The layer's name, as a string value.
ST_EXPORT OdVariant layerNameToOdVariant(OdDbLayerTableRecord* layer);
// The layer's colour index, as a 16-bit value.
ST_EXPORT OdVariant layerColorToOdVariant(OdDbLayerTableRecord* layer);
// getLayerLineType(layer), as a string value.
ST_EXPORT OdVariant layerLineTypeToOdVariant(OdDbLayerTableRecord* layer);
// The layer's lineweight as an unsigned 32-bit value: ByLayer (-1) arrives as 0xFFFFFFFF.
ST_EXPORT OdVariant layerLineWeightToOdVariant(OdDbLayerTableRecord* layer);
// The name of the layer's linetype record. The record must exist: a layer naming a linetype
// the drawing lacks throws the kernel's OdError(eNullObjectId).
ST_EXPORT OdString getLayerLineType(OdDbLayerTableRecord* layer);
// Always the empty string, whatever the id: linetype names are read with getLayerLineType.
// Kept so that plug-ins built against it still link and behave as they always have.
ST_EXPORT OdString lineTypeToString(const OdDbObjectId& id);
// "ByLayer", "ByBlock" or "ByDefault" (translated by the host) for the special values, else
// millimetres with two decimals ("0.25" for 25, "0.00" for 0).
ST_EXPORT OdString lineWeightToString(OdDb::LineWeight lineWeight);

}  // namespace st

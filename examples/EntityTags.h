#pragma once

#include <string>

#include "OdString.h"

// The tags of a new entity as DXF text lines ("code\nvalue\n..."), the form that
// OdDbObject::initFromTemplate takes: the type, the common subclass with the layer, then what
// the caller adds. Handles and owners are left to the drawing the entity joins. Numbers are
// written with at most six decimals and no trailing zeros, so that the same drawing always
// gives the same bytes.
class EntityTags {
 public:
  // Starts an entity of DXF type `type` on `layer`, in `linetype` when one is given (else in
  // its layer's).
  EntityTags(const char* type, const OdString& layer, const OdString& linetype = OdString());

  EntityTags& add(int code, const char* value);
  EntityTags& add(int code, const OdString& value);
  EntityTags& add(int code, int value);
  EntityTags& add(int code, double value);
  // A point or vector: x under `code`, y under `code` + 10, z under `code` + 20.
  EntityTags& point(int code, double x, double y, double z = 0.0);
  // A point of a plane (a polyline's vertex, a hatch boundary's): x and y only.
  EntityTags& flatPoint(int code, double x, double y);

  const std::string& type() const { return type_; }
  const std::string& text() const { return text_; }

 private:
  std::string type_;
  std::string text_;
};

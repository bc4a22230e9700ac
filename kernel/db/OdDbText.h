#pragma once

#include "OdDbEntity.h"

// A single-line text (and the base of attribute definitions and attributes).
class OdDbText : public OdDbEntity {
  ODRX_DECLARE_MEMBERS(OdDbText);

  // The text style record named by the entity ("Standard" when it stores none), or null when the
  // drawing lacks it.
  OdDbObjectId textStyle() const;
  OdString textStyleName() const;
  // Points the entity at a text style record of the same drawing (OdError eWrongDatabase,
  // eInvalidInput for a record of another table, eWasErased).
  void setTextStyle(const OdDbObjectId& id);

  // The text shown (group 1), its insertion point (10, 20, 30) and its height (40). Setting
  // needs the entity open for write.
  OdString textString() const;
  void setTextString(const OdString& text);
  void setPosition(double x, double y, double z = 0.0);
  double height() const;
  void setHeight(double height);

 protected:
  OdDbText() = default;
  void initNewObject() override;
};

using OdDbTextPtr = OdSmartPtr<OdDbText>;

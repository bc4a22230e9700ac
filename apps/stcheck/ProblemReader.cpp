#include "ProblemReader.h"

#include <algorithm>

#include "OdDbSymbolTableRecord.h"
#include "StErrorFlags.h"
#include "StIgnoreMarks.h"
#include "StRankedFixes.h"
#include "StVariantText.h"

namespace stcheck {

namespace {

std::string valueText(const OdString& name, const OdVariant& value,
                      const st::StPropertyFormatterPtr& formatter) {
  if (formatter) return formatter->format(name, value).toUtf8();
  return st::odVariantToString(value).toUtf8();
}

std::string exactText(const OdString& name, const OdVariant& value,
                      const st::StPropertyFormatterPtr& formatter) {
  if (formatter) return formatter->formatExact(name, value).toUtf8();
  if (value.varType() == OdVariant::kDouble) return st::exactRealText(value.getDouble()).toUtf8();
  return st::odVariantToString(value).toUtf8();
}

// The record's name; an erased record (a fix that replaced it) still tells it.
OdString objectName(const OdDbObjectId& id) {
  if (id.isNull()) return OdString();
  OdDbObjectPtr object = id.openObject(OdDb::kForRead, true);
  OdDbSymbolTableRecordPtr record = OdDbSymbolTableRecord::cast(object.get());
  return record.isNull() ? OdString() : record->getName();
}

}  // namespace

ReportProblem ProblemReader::read(const st::StErrorAccumulatorImpl::Entry& entry, bool fixed) {
  st::StError& error = *entry.error;
  ReportProblem p;
  p.plugin = entry.pluginClass.toUtf8();
  p.pluginName = entry.pluginName.toUtf8();
  OdDbObjectId id = error.objectId();
  p.handle = id.isNull() ? std::string() : id.getHandle().ascii();
  // The name the record had when the problem was found: a fix may have renamed it since.
  OdString name;
  for (std::int32_t i = 0; i < static_cast<std::int32_t>(error.propertyCount()); ++i) {
    OdString property;
    OdVariant value;
    if (error.property(i, property, value) && property == L"Name" &&
        value.varType() == OdVariant::kString)
      name = value.getString();
  }
  if (name.isEmpty()) name = objectName(id);
  p.objectName = name.toUtf8();
  p.title = error.name().toUtf8();
  p.description = error.description().toUtf8();
  p.reason = error.reason().toUtf8();
  p.fixed = fixed;
  if (fixed && entry.fix) {
    p.fixedWith = entry.fix->name().toUtf8();
    // A fix that brings another name (names compare ignoring case) replaced the record.
    if (!name.isEmpty() && entry.fix->name().iCompare(name) != 0) p.renamedTo = p.fixedWith;
  }
  if (error.flags() & st::kStErrorIgnored) {
    p.ignoredBy = st::getObjectIgnoredBy(id).toUtf8();
    if (p.ignoredBy.empty()) p.ignoredBy = "(unknown user)";
  }
  if (!entry.plugin) return p;

  st::StDWSPlugin& plugin = *entry.plugin;
  st::StPropertyFormatterPtr formatter = plugin.propertyFormatter();
  // Only the fixes the report lists are made when the plug-in can rank them: a non-standard
  // name may have every record of every standards file as a candidate.
  const unsigned limit = static_cast<unsigned>(ReportProblem::kFixesListed);
  OdArray<st::StFixPtr> fixes;
  int recommended = -1;
  std::size_t total = 0;
  if (auto* ranked = dynamic_cast<st::StRankedFixes*>(&plugin)) {
    unsigned all = 0;
    ranked->getFirstFixes(&error, limit, fixes, recommended, all);
    total = all;
  } else {
    plugin.getAllFixes(&error, fixes, recommended);
    total = fixes.size();
  }
  // The recommended fix first, the rest in the plug-in's order.
  if (recommended >= 0)
    p.fixes.push_back(
        {fixes[recommended]->name().toUtf8(), fixes[recommended]->standardsFile().toUtf8(), true});
  for (int i = 0; i < static_cast<int>(fixes.size()) && p.fixes.size() < limit; ++i)
    if (i != recommended)
      p.fixes.push_back({fixes[i]->name().toUtf8(), fixes[i]->standardsFile().toUtf8(), false});
  // A fixed problem names the fix that was applied as the recommended one: it is the fix the
  // module chose, whatever the plug-in offers once the object meets the standard.
  if (fixed && entry.fix) {
    ReportFix used{entry.fix->name().toUtf8(), entry.fix->standardsFile().toUtf8(), true};
    auto listed = p.fixes.end();
    for (auto it = p.fixes.begin(); it != p.fixes.end(); ++it) {
      it->recommended = it->name == used.name && it->standardsFile == used.standardsFile;
      if (it->recommended) listed = it;
    }
    if (listed != p.fixes.end()) {
      std::rotate(p.fixes.begin(), listed, listed + 1);
    } else {
      p.fixes.insert(p.fixes.begin(), used);
      ++total;
    }
  }
  if (p.fixes.size() > limit) p.fixes.resize(limit);
  p.moreFixes = total > p.fixes.size() ? total - p.fixes.size() : 0;

  // The values the fix used (or the recommended one) would change.
  st::StFixPtr fix = fixed && entry.fix ? entry.fix
                     : recommended >= 0 ? fixes[recommended]
                                        : st::StFixPtr();
  if (fix) {
    OdArray<OdString> names;
    OdArray<OdVariant> current;
    plugin.getPropertyDiffs(&error, fix.get(), names, current, OdArray<OdVariant>());
    for (int i = 0; i < static_cast<int>(names.size()); ++i) {
      OdVariant standard;
      fix->propertyValue(names[i], standard);
      OdVariant now = i < static_cast<int>(current.size()) ? current[i] : OdVariant();
      std::string shownNow = valueText(names[i], now, formatter);
      std::string shownStandard = valueText(names[i], standard, formatter);
      // The drawing's number of places may show two different reals alike ("1 -> 1").
      if (shownNow == shownStandard && !st::compareOdVariant(now, standard)) {
        shownNow = exactText(names[i], now, formatter);
        shownStandard = exactText(names[i], standard, formatter);
      }
      p.properties.push_back({names[i].toUtf8(), shownNow, shownStandard});
    }
  }
  return p;
}

}  // namespace stcheck

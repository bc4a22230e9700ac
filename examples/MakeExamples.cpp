// Writes the example project that the README's main command checks: two standards files and a
// floor plan (FloorPlan draws it) that breaks them in every way the standard plug-ins know,
// with one problem a user has marked as ignored. Run by make-examples.sh; the files it writes are
// committed, and a test checks that they are still what this program makes.

#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "FloorPlan.h"
#include "OdDbDatabase.h"
#include "OdDbDimStyleTable.h"
#include "OdDbDimStyleTableRecord.h"
#include "OdDbLayerTable.h"
#include "OdDbLayerTableRecord.h"
#include "OdDbLinetypeTable.h"
#include "OdDbLinetypeTableRecord.h"
#include "OdDbTextStyleTable.h"
#include "OdDbTextStyleTableRecord.h"
#include "OdError.h"
#include "OdResBuf.h"
#include "StDbReaderWriter.h"
#include "StIgnoreMarks.h"

namespace {

struct Linetype {
  const wchar_t* name;
  const wchar_t* description;
  std::vector<double> dashes;
};
struct Layer {
  const wchar_t* name;
  short color;
  const wchar_t* linetype;
  int lineweight;  // hundredths of a millimetre
};
struct TextStyle {
  const wchar_t* name;
  const wchar_t* font;
  double width;
};
struct DimStyle {
  const wchar_t* name;
  double textHeight;  // DIMTXT
  double arrowSize;   // DIMASZ
  const wchar_t* textStyle;
  double scale = 1.0;  // DIMSCALE, stored when not 1
};
struct Drawing {
  std::vector<Linetype> linetypes;
  std::vector<TextStyle> textStyles;
  std::vector<DimStyle> dimStyles;
  std::vector<Layer> layers;
};

OdDbDatabasePtr build(const Drawing& d) {
  OdDbDatabasePtr db = OdDbDatabase::createEmpty();
  {
    OdDbLinetypeTablePtr table = db->getLinetypeTableId().safeOpenObject(OdDb::kForWrite);
    for (const Linetype& l : d.linetypes) {
      OdDbLinetypeTableRecordPtr r = OdDbLinetypeTableRecord::createObject();
      r->setName(l.name);
      r->setComments(l.description);
      r->setDashes(l.dashes);
      table->add(r.get());
    }
  }
  {
    OdDbTextStyleTablePtr table = db->getTextStyleTableId().safeOpenObject(OdDb::kForWrite);
    for (const TextStyle& s : d.textStyles) {
      OdDbTextStyleTableRecordPtr r = OdDbTextStyleTableRecord::createObject();
      r->setName(s.name);
      r->setFileName(s.font);
      r->setXScale(s.width);
      table->add(r.get());
    }
  }
  {
    OdDbDimStyleTablePtr table = db->getDimStyleTableId().safeOpenObject(OdDb::kForWrite);
    OdDbTextStyleTablePtr styles = db->getTextStyleTableId().safeOpenObject();
    for (const DimStyle& s : d.dimStyles) {
      OdDbDimStyleTableRecordPtr r = OdDbDimStyleTableRecord::createObject();
      r->setName(s.name);
      table->add(r.get());
      r->setDimVar(OdResBuf::newRb(140, s.textHeight).get());
      r->setDimVar(OdResBuf::newRb(41, s.arrowSize).get());
      r->setDimtxsty(styles->getAt(s.textStyle));
      if (s.scale != 1.0) r->setDimVar(OdResBuf::newRb(40, s.scale).get());
    }
  }
  {
    OdDbLayerTablePtr table = db->getLayerTableId().safeOpenObject(OdDb::kForWrite);
    OdDbLinetypeTablePtr linetypes = db->getLinetypeTableId().safeOpenObject();
    for (const Layer& l : d.layers) {
      OdDbLayerTableRecordPtr r = OdDbLayerTableRecord::createObject();
      r->setName(l.name);
      table->add(r.get());
      r->setColorIndex(l.color);
      r->setLinetypeObjectId(linetypes->getAt(l.linetype));
      r->setLineWeight(static_cast<OdDb::LineWeight>(l.lineweight));
    }
  }
  return db;
}

void write(OdDbDatabase& db, const std::string& path) {
  db.writeFile(std::filesystem::u8path(path));
  std::printf("wrote %s\n", path.c_str());
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: make_examples FOLDER\n");
    return 2;
  }
  std::string dir = argv[1];
  try {
    // The office standard: layers, linetypes, text styles and a dimension style.
    Drawing office;
    office.linetypes = {{L"DASHED", L"Dashed __ __ __ __", {12.7, -6.35}},
                        {L"HIDDEN", L"Hidden _ _ _ _ _", {6.35, -3.175}},
                        {L"CENTER", L"Center ____ _ ____ _", {31.75, -6.35, 6.35, -6.35}}};
    office.textStyles = {{L"Office-Notes", L"romans.shx", 0.8},
                         {L"Office-Titles", L"romant.shx", 1.0}};
    office.dimStyles = {{L"Office-Dim", 2.5, 2.5, L"Office-Notes"}};
    office.layers = {{L"A-WALL", 7, L"Continuous", 50}, {L"A-DOOR", 3, L"DASHED", 25},
                     {L"A-GLAZ", 4, L"Continuous", 18}, {L"A-ANNO-TEXT", 2, L"Continuous", 18},
                     {L"A-FURN", 6, L"HIDDEN", 13},     {L"S-GRID", 8, L"CENTER", 13}};
    write(*build(office), dir + "/office-standards.dws");

    // The site standard, checked second: survey layers and a dimension style for site plans.
    Drawing site;
    site.textStyles = {{L"Site-Text", L"simplex.shx", 1.0}};
    site.dimStyles = {{L"Site-Dim", 3.5, 3.0, L"Site-Text"}};
    site.layers = {{L"C-TOPO", 94, L"Continuous", 18}, {L"C-ROAD", 8, L"Continuous", 35}};
    write(*build(site), dir + "/site-standards.dws");

    // The floor plan: mostly standard, with the mistakes drafters make.
    Drawing plan;
    plan.linetypes = {{L"DASHED", L"Dashed __ __ __ __", {12.7, -6.35}},
                      {L"HIDDEN", L"Hidden", {5.0, -2.5}},                      // another pattern
                      {L"Dashdot2", L"My dash-dot", {10.0, -2.0, 0.0, -2.0}}};  // not standard
    plan.textStyles = {{L"Office-Notes", L"romans.shx", 1.0},         // wider than the standard
                       {L"Office-Titles", L"romant.shx", 1.0},        // as the standard
                       {L"Notes-Arial", L"arial.ttf", 1.0}};          // not standard
    plan.dimStyles = {{L"Office-Dim", 3.0, 2.5, L"Office-Notes"},     // larger text
                      {L"My-Dims", 2.0, 2.0, L"Notes-Arial", 50.0}};  // not standard
    plan.layers = {{L"A-WALL", 1, L"Continuous", 50},                 // red, the standard has white
                   {L"A-DOOR", 3, L"DASHED", 25},                     // as the standard
                   {L"a-glaz", 4, L"Continuous", 18},                 // as the standard, other case
                   {L"Furniture", 6, L"Dashdot2", 13},                // not standard
                   {L"A-ANNO-TEXT", 2, L"Continuous", 35},            // heavier than the standard
                   {L"C-TOPO", 94, L"Continuous", 18},                // from the site standard
                   {L"C-ROAD", 8, L"Continuous", 35},                 // from the site standard
                   {L"Ébauche", 5, L"Continuous", -3}};               // not standard, ignored below
    OdDbDatabasePtr db = build(plan);
    FloorPlan(*db).draw();

    // The association lives in the drawing; relative paths are found from its folder.
    st::StDbReaderWriterPtr association = st::StDbReaderWriter::createObject();
    association->setDatabase(db.get());
    OdArray<OdString> files;
    files.push_back(L"office-standards.dws");
    files.push_back(L"site-standards.dws");
    if (!association->writeStandardFiles(files))
      throw OdError(eInvalidInput, "cannot write the standards association");

    // A sketch layer the team lead chose to keep.
    OdDbLayerTablePtr layers = db->getLayerTableId().safeOpenObject();
    if (!st::writeObjectIgnoredMark(layers->getAt(L"Ébauche"), L"alice"))
      throw OdError(eInvalidInput, "cannot mark the sketch layer as ignored");
    write(*db, dir + "/floor-plan.dxf");
    return 0;
  } catch (const OdError& e) {
    std::fprintf(stderr, "make_examples: %s\n", e.description().toUtf8().c_str());
    return 2;
  }
}

// The "Standard Errors found" report of the silent check, in the real desktop window with the
// real modules: what SAVE of the example shows, its rows lighting the drawing view, "Fix
// errors" opening the check, the quiet and the all-fixed runs, the order of the rows and the
// keys; and the entities stObjectUsers finds, against what ezdxf finds in the same file.

#include <QPlainTextEdit>
#include <QPushButton>
#include <QTreeWidget>
#include <algorithm>
#include <functional>
#include <map>
#include <sstream>
#include <vector>

#include "DesktopTestSupport.h"
#include "DrawingBuilders.h"
#include "HostDocument.h"
#include "HostDrawingView.h"
#include "OdDbSymbolTable.h"
#include "StAppServices.h"
#include "StDbReaderWriter.h"
#include "StDialogs.h"
#include "StSettingsStorage.h"
#include "StUiCheckStandardsDlg.h"
#include "StUiErrorReportDlg.h"
#include "StUiObjectUsers.h"

using desktoptest::Desktop;
using qthosttest::whenShown;
using stui::StUiErrorReportDlg;
namespace fs = std::filesystem;

namespace {

const QString kReport = QStringLiteral("Standard Errors found");

// The texts of a list's rows in one column, top to bottom.
QStringList column(QTreeWidget* list, int index) {
  QStringList texts;
  for (int row = 0; row < list->topLevelItemCount(); ++row)
    texts << list->topLevelItem(row)->text(index);
  return texts;
}

// Pixels of `view`'s drawing, fitted, in the colour of its highlight.
int litPixels(HostDrawingView* view) {
  const QImage image = view->render(QSize(400, 300), true).convertToFormat(QImage::Format_RGB32);
  const QRgb lit = view->darkBackground() ? qRgb(80, 160, 255) : qRgb(0, 100, 230);
  int count = 0;
  for (int y = 0; y < image.height(); ++y)
    for (int x = 0; x < image.width(); ++x) count += image.pixel(x, y) == lit;
  return count;
}

OdDbObjectId recordOf(const OdDbObjectId& table, const OdString& name) {
  OdDbSymbolTablePtr records = table.safeOpenObject();
  return records->getAt(name);
}

st::StErrorPtr newError(const wchar_t* name) {
  st::StErrorPtr error = st::StError::createObject();
  error->setName(name);
  error->setDescription(OdString(L"what is wrong with ") + name);
  return error;
}

// Runs `act` from the event loop on every report that shows while it lives.
class ReportWatch : public QObject {
 public:
  explicit ReportWatch(std::function<void(StUiErrorReportDlg*)> act) : act_(std::move(act)) {
    qApp->installEventFilter(this);
  }
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() == QEvent::Show)
      if (auto* report = qobject_cast<StUiErrorReportDlg*>(watched))
        QTimer::singleShot(0, report, [this, report] { act_(report); });
    return false;
  }

 private:
  std::function<void(StUiErrorReportDlg*)> act_;
};

}  // namespace

class ErrorReportDialogTest : public QObject, desktoptest::ExampleFolder {
  Q_OBJECT

 private:
  void open(Desktop& d, const fs::path& drawing) {
    d.window->sendWithPath("OPEN", QString::fromStdString(drawing.string()));
    stSettingsStorage()->setAutoFixCommands(st::kStCheckOnSave);
    stSettingsStorage()->setAutoFixProperties(true);
  }

  // Down selects a row, Tab goes list, list, buttons, Escape ends the report.
  void useKeys(StUiErrorReportDlg& report) {
    QCOMPARE(report.focusWidget(), static_cast<QWidget*>(report.unfixedList()));
    QTest::keyClick(report.unfixedList(), Qt::Key_Down);
    QCOMPARE(report.unfixedList()->selectedItems().size(), 1);
    QVERIFY(!report.zoomButton()->isEnabled());  // nothing in a drawing to show
    for (QWidget* next : std::initializer_list<QWidget*>{report.fixedList(), report.fixButton(),
                                                         report.closeButton()}) {
      QTest::keyClick(report.focusWidget(), Qt::Key_Tab);
      QCOMPARE(report.focusWidget(), next);
    }
    QTest::keyClick(report.focusWidget(), Qt::Key_Escape);
  }

  // The report of SAVE of the example, as a drafter reads and uses it.
  void readReport(StUiErrorReportDlg* report, HostDrawingView* view) {
    QTreeWidget* unfixed = report->unfixedList();
    QTreeWidget* fixed = report->fixedList();
    QCOMPARE(unfixed->headerItem()->text(2), QString("Plugin"));
    QCOMPARE(fixed->headerItem()->text(2), QString("Fixed by"));
    // The plug-ins report in the order of their class names; the last reported reads first.
    QCOMPARE(column(unfixed, 2),
             QStringList({"Text styles", "Linetypes", "Layers", "Dimension styles"}));
    QCOMPARE(fixed->topLevelItemCount(), 5);
    for (QTreeWidget* list : {unfixed, fixed})
      for (int row = 0; row < list->topLevelItemCount(); ++row)
        QVERIFY(!list->topLevelItem(row)->icon(0).isNull());
    QVERIFY(report->fixButton()->isEnabled());
    QCOMPARE(report->closeButton()->text(), QString("Cancel"));

    // The layer at fault lights its entities in the view, taking the selection over from the
    // other list; Zoom to comes in, and the dialog stays.
    QCOMPARE(litPixels(view), 0);
    QTreeWidgetItem* fixedRow = fixed->topLevelItem(0);
    QTest::mouseClick(fixed->viewport(), Qt::LeftButton, {},
                      fixed->visualItemRect(fixedRow).center());
    QVERIFY(fixedRow->isSelected());
    QTreeWidgetItem* layer = unfixed->topLevelItem(2);
    QTest::mouseClick(unfixed->viewport(), Qt::LeftButton, {},
                      unfixed->visualItemRect(layer).center());
    QVERIFY(layer->isSelected() && !fixedRow->isSelected());
    QVERIFY(litPixels(view) > 0);
    const double scale = view->transform().scale;
    QVERIFY(report->zoomButton()->isEnabled());
    QTest::mouseClick(report->zoomButton(), Qt::LeftButton);
    QVERIFY(view->transform().scale > scale);
    QVERIFY(report->isVisible());
    QVERIFY(report->grab().save("/tmp/staudit-qt-shots/report-dialog.png"));
    // A taller window gives both lists the room.
    const int unfixedHeight = unfixed->height(), fixedHeight = fixed->height();
    report->resize(report->width(), report->height() + 100);
    QVERIFY(unfixed->height() > unfixedHeight && fixed->height() > fixedHeight);
  }

 private slots:
  void initTestCase() { fs::create_directories("/tmp/staudit-qt-shots"); }

  void init() {
    const std::string error = rewriteExample();
    QVERIFY2(error.empty(), error.c_str());
  }

  // SAVE with "Save" checked shows what the silent check found; a row lights its object's
  // entities until the report ends; "Fix errors" opens the Check Standards dialog.
  void saveShowsTheReportAndFixErrorsChecks() {
    Desktop d(config);
    open(d, plan);
    HostDrawingView* view = d.window->viewOf(d.app->documents().curDocument());
    QVERIFY(view);
    bool reported = false, checkOpened = false;
    QString problem;
    whenShown(kReport, [&](QWidget* window) {
      auto* report = qobject_cast<StUiErrorReportDlg*>(window);
      reported = report != nullptr;
      if (report) readReport(report, view);
      whenShown("Check Standards", [&](QWidget* shown) {
        // At the first problem the silent check left unfixed.
        auto* check = qobject_cast<stui::StUiCheckStandardsDlg*>(shown);
        checkOpened = check && !check->problemBox()->toPlainText().isEmpty() &&
                      check->fixList()->topLevelItemCount() > 0;
        if (check) problem = check->problemBox()->toPlainText();
        desktoptest::clickWhenShows("Checking Not Finished.", "OK");
        shown->close();
      });
      QTest::mouseClick(desktoptest::buttonOf(window, "Fix errors"), Qt::LeftButton);
    });
    d.type("SAVE");
    QVERIFY2(reported, d.transcript().c_str());
    QTRY_VERIFY2(checkOpened, qPrintable(problem));
  }

  // A drawing that follows its standard shows nothing on SAVE; once a layer is off the
  // standard and fixed by itself, the report shows only fixed rows and offers to close.
  void quietAndAllFixedRuns() {
    const fs::path tidy = dir.path() / "tidy.dxf";
    {
      OdDbDatabasePtr db = OdDbDatabase::readFile(dir.path() / "office-standards.dws");
      st::StDbReaderWriterPtr list = st::StDbReaderWriter::createObject();
      QVERIFY(list->setDatabase(db.get()));
      list->writeStandardFiles(OdArray<OdString>{OdString(L"office-standards.dws")});
      // A big text on the layer that will be off the standard, for the view to light.
      OdDbTextPtr text =
          testsupport::addText(*db, L"A-WALL", L"WALL").safeOpenObject(OdDb::kForWrite);
      text->setHeight(10);
      db->writeFile(tidy);
    }
    Desktop d(config);
    // Each report as "unfixed rows, fixed rows, whether Fix errors is enabled, second button";
    // a fixed row lights its layer's entities until the report closes.
    QStringList seen;
    HostDrawingView* view = nullptr;
    int lit = 0;
    ReportWatch watch([&](StUiErrorReportDlg* report) {
      seen << QString("%1 %2 %3 %4")
                  .arg(report->unfixedList()->topLevelItemCount())
                  .arg(report->fixedList()->topLevelItemCount())
                  .arg(report->fixButton()->isEnabled() ? "enabled" : "disabled")
                  .arg(report->closeButton()->text());
      QTreeWidget* fixed = report->fixedList();
      if (fixed->topLevelItemCount() > 0)
        QTest::mouseClick(fixed->viewport(), Qt::LeftButton, {},
                          fixed->visualItemRect(fixed->topLevelItem(0)).center());
      lit = litPixels(view);
      QTest::mouseClick(report->closeButton(), Qt::LeftButton);
    });
    open(d, tidy);
    view = d.window->viewOf(d.app->documents().curDocument());
    d.type("SAVE");
    QCOMPARE(seen, QStringList());
    d.type("-LAYER COLOR 1 A-WALL");
    d.type("SAVE");
    QCOMPARE(seen, QStringList({"0 1 disabled Close"}));
    QVERIFY(lit > 0);
    QCOMPARE(litPixels(view), 0);
  }

  // Errors reported A, B, C read C, B, A; Tab goes from list to list to the buttons; Escape
  // and the close box end the report as Close does (not as "Fix errors").
  void rowOrderAndKeys() {
    Desktop d(config);
    st::StErrorAccumulatorImpl found;
    for (const wchar_t* name : {L"A", L"B", L"C"}) found.addError(newError(name).get());
    st::StFixPtr fix = st::StFix::createObject();
    fix->setName(L"the standard's");
    found.addFixedError(newError(L"D").get(), fix.get());
    {
      StUiErrorReportDlg report(nullptr, found);
      QCOMPARE(column(report.unfixedList(), 0), QStringList({"C", "B", "A"}));
      QCOMPARE(column(report.fixedList(), 2), QStringList({"the standard's"}));
      whenShown(kReport, [&](QWidget*) {
        useKeys(report);
        if (report.isVisible()) report.done(-2);  // the keys failed to end it
      });
      QCOMPARE(report.runModal(), StUiErrorReportDlg::kClose);
    }
    StUiErrorReportDlg report(nullptr, found);
    whenShown(kReport, [](QWidget* window) { window->close(); });
    QCOMPARE(report.runModal(), StUiErrorReportDlg::kClose);
  }

  // The entities that use each layer, linetype, text style and dimension style of the
  // example, as ezdxf finds them; none for an erased record or a null id.
  void objectUsersAsEzdxfFindsThem() {
    Desktop d(config);
    d.window->sendWithPath("OPEN", QString::fromStdString(plan.string()));
    OdDbDatabase* db = d.app->currentDatabase();
    QVERIFY(db);
    // Per record: kind, name, the handles of its users in model space, sorted.
    const auto oracle = testsupport::ezdxf(R"(
import collections
doc = ezdxf.readfile(path)
lines = {line.strip() for line in open(path, encoding='utf-8')}
layerType = {l.dxf.name.upper(): l.dxf.linetype.upper() for l in doc.layers}
users = collections.defaultdict(list)
for e in doc.modelspace():
    layer = e.dxf.layer.upper()
    users['LAYER', layer].append(e.dxf.handle)
    linetype = e.dxf.get('linetype', 'BYLAYER').upper()
    users['LTYPE', layerType.get(layer) if linetype == 'BYLAYER' else linetype].append(e.dxf.handle)
    if e.dxftype() in ('TEXT', 'MTEXT', 'ATTDEF'):
        users['STYLE', e.dxf.get('style', 'Standard').upper()].append(e.dxf.handle)
    if e.dxftype() in ('DIMENSION', 'LEADER', 'TOLERANCE'):
        users['DIMSTYLE', e.dxf.get('dimstyle', 'Standard').upper()].append(e.dxf.handle)
for kind, table in (('LAYER', doc.layers), ('LTYPE', doc.linetypes), ('STYLE', doc.styles),
                    ('DIMSTYLE', doc.dimstyles)):
    for record in table:
        # ezdxf adds records a drawing may lack (Defpoints): only the file's own are compared.
        if record.dxf.name in lines:
            print(kind, record.dxf.name, *sorted(users[kind, record.dxf.name.upper()]), sep='\t')
)",
                                           plan);
    QVERIFY2(oracle.exitCode == 0, oracle.output.c_str());
    const std::map<std::string, OdDbObjectId> tables{{"LAYER", db->getLayerTableId()},
                                                     {"LTYPE", db->getLinetypeTableId()},
                                                     {"STYLE", db->getTextStyleTableId()},
                                                     {"DIMSTYLE", db->getDimStyleTableId()}};
    std::istringstream lines(oracle.output);
    int records = 0, used = 0;
    for (std::string line; std::getline(lines, line);) {
      std::istringstream fields(line);
      std::string kind, name, handle;
      std::getline(fields, kind, '\t');
      std::getline(fields, name, '\t');
      std::vector<std::string> expected;
      while (std::getline(fields, handle, '\t')) expected.push_back(handle);
      const OdDbObjectId id = recordOf(tables.at(kind), OdString::fromUtf8(name));
      QVERIFY2(!id.isNull(), line.c_str());
      std::vector<std::string> found;
      for (const OdDbObjectId& user : stui::stObjectUsers(id))
        found.push_back(user.getHandle().ascii());
      std::sort(found.begin(), found.end());
      QVERIFY2(found == expected, line.c_str());
      ++records;
      used += !expected.empty();
    }
    QVERIFY(records >= 20 && used >= 12);  // the oracle saw the example, not an empty file

    // A layer made in the session, dashed, with every entity moved onto it: all of them use
    // it, and DASHED by layer too, but for the one drawn in HIDDEN by name.
    const OdDbObjectId sketch = recordOf(db->getLayerTableId(), OdString(L"Ébauche"));
    QVERIFY(!stui::stObjectUsers(sketch).isEmpty());
    for (const char* line : {"-LAYER NEW Kitchen", "-LAYER LTYPE dashed Kitchen", "SELECT ALL",
                             "CHANGE LAYER Kitchen"})
      d.type(line);
    const auto all = d.app->documents().curDocument()->selection().size();
    QVERIFY2(all > 70, d.transcript().c_str());
    QCOMPARE(stui::stObjectUsers(recordOf(db->getLayerTableId(), OdString(L"KITCHEN"))).size(),
             all);
    QCOMPARE(stui::stObjectUsers(recordOf(db->getLinetypeTableId(), OdString(L"DASHED"))).size(),
             all - 1);
    QVERIFY(stui::stObjectUsers(sketch).isEmpty());

    // Nothing for an erased record or a null id.
    QVERIFY(stui::stObjectUsers(OdDbObjectId()).isEmpty());
    const OdDbObjectId hidden = recordOf(db->getLinetypeTableId(), OdString(L"HIDDEN"));
    QCOMPARE(stui::stObjectUsers(hidden).size(), 1u);
    hidden.safeOpenObject(OdDb::kForWrite)->erase();
    QVERIFY(stui::stObjectUsers(hidden).isEmpty());
  }
};

QTEST_MAIN(ErrorReportDialogTest)
#include "ErrorReportDialogTest.moc"

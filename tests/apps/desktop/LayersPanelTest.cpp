// The layers panel driven as a drafter drives it, docked in the real desktop window over a real
// drawing: every click becomes a -LAYER line on the command line, the drawing changes through
// it, and what is typed on the command line shows in the panel.

#include <QComboBox>
#include <QDockWidget>
#include <QSpinBox>
#include <QTableWidget>
#include <algorithm>

#include "DesktopTestSupport.h"
#include "DrawingBuilders.h"
#include "HostDocument.h"
#include "LayersDock.h"
#include "OdResBuf.h"

using desktoptest::buttonOf;
using desktoptest::Desktop;
namespace fs = std::filesystem;

namespace {

// Layer 0, the linetype DASHED, layer Walls in red with two texts on it, and an unused layer
// whose name has a blank.
fs::path writePlan(const fs::path& file) {
  OdDbDatabasePtr db = OdDbDatabase::createEmpty();
  testsupport::addLinetype(*db, L"DASHED", L"Dashed __ __", {0.5, -0.25});
  testsupport::addLayer(*db, L"Walls", 1);
  testsupport::addLayer(*db, L"Spare room", 2);
  testsupport::addText(*db, L"Walls", L"a");
  testsupport::addText(*db, L"Walls", L"b");
  db->writeFile(file);
  return file;
}

OdDbLayerTableRecordPtr layer(Desktop& d, const wchar_t* name) {
  OdDbLayerTablePtr layers = d.app->currentDatabase()->getLayerTableId().safeOpenObject();
  return OdDbLayerTableRecordPtr(layers->getAt(name, OdDb::kForRead));
}

QString currentLayer(Desktop& d) {
  return QString::fromStdString(
      d.app->currentDatabase()->getHeaderVariable(L"$CLAYER")->getString().toUtf8());
}

struct Panel {
  explicit Panel(Desktop& d) : dock(makeLayersDock(*d.app, d.window.get())) {
    d.window->addDockWidget(Qt::RightDockWidgetArea, dock);
    dock->show();
    panel = qobject_cast<LayersPanel*>(dock->widget());
    table = panel->table();
  }
  int row(const QString& name) const { return panel->rowOf(name); }
  QString text(const QString& name, int column) const {
    return table->item(row(name), column)->text();
  }
  // Clicks the cell of the layer `name` in `column`, then lets the line it sends run.
  void click(const QString& name, int column) {
    QTableWidgetItem* item = table->item(row(name), column);
    table->scrollToItem(item);
    QTest::mouseClick(table->viewport(), Qt::LeftButton, {}, table->visualItemRect(item).center());
    QCoreApplication::processEvents();
  }
  void press(const QString& button) {
    buttonOf(panel, button)->click();
    QCoreApplication::processEvents();
  }
  QComboBox* combo(const QString& name, int column) const {
    return qobject_cast<QComboBox*>(table->cellWidget(row(name), column));
  }

  QDockWidget* dock;
  LayersPanel* panel;
  QTableWidget* table;
};

}  // namespace

class LayersPanelTest : public QObject {
  Q_OBJECT

 private:
  testsupport::TempDir dir;
  fs::path config() const { return dir.path() / "config" / "standards-audit.json"; }

 private slots:
  void everyEditIsALayerCommandAndTypedOnesShow() {
    const fs::path plan = writePlan(dir.path() / "plan.dxf");
    Desktop d(config());
    d.window->sendWithPath("OPEN", QString::fromStdString(plan.string()));
    Panel p(d);
    QTableWidget* t = p.table;

    QCOMPARE(t->rowCount(), 3);
    QCOMPARE(p.panel->layerAt(0), QString("0"));
    QCOMPARE(p.panel->layerAt(1), QString("Spare room"));
    QCOMPARE(p.panel->layerAt(2), QString("Walls"));
    QCOMPARE(p.text("0", LayersPanel::kCurrent), QString::fromUtf8("\u2713"));
    QVERIFY(t->item(0, LayersPanel::kName)->font().bold());
    QCOMPARE(p.text("Walls", LayersPanel::kColour), QString("1 red"));
    QCOMPARE(p.combo("Walls", LayersPanel::kLineweight)->currentText(), QString("Default"));

    // On and Frozen toggle with a click, each through the command line.
    p.click("Walls", LayersPanel::kOn);
    QVERIFY(layer(d, L"Walls")->isOff());
    QVERIFY2(d.transcript().find("Command: -LAYER\nEnter an option [New/Color/Ltype/LWeight/Set/"
                                 "Rename/ON/OFF/Freeze/Thaw/Delete]: OFF\n"
                                 "Layer to turn off: Walls\nLayer Walls turned off\n") !=
                 std::string::npos,
             d.transcript().c_str());
    QCOMPARE(p.text("Walls", LayersPanel::kOn), QString("Off"));
    p.click("Walls", LayersPanel::kOn);
    p.click("Walls", LayersPanel::kFrozen);
    QVERIFY(!layer(d, L"Walls")->isOff());
    QVERIFY(layer(d, L"Walls")->isFrozen());
    QCOMPARE(p.text("Walls", LayersPanel::kFrozen), QString("Frozen"));
    p.click("Walls", LayersPanel::kFrozen);
    QVERIFY(!layer(d, L"Walls")->isFrozen());

    // Delete is offered only for a layer the command would delete, and says why not.
    QAbstractButton* remove = buttonOf(p.panel, "Delete");
    p.click("Walls", LayersPanel::kName);
    QVERIFY(!remove->isEnabled());
    QVERIFY2(remove->toolTip().contains("2 objects use it"), qPrintable(remove->toolTip()));
    p.click("0", LayersPanel::kName);
    QVERIFY(!remove->isEnabled());
    p.click("Spare room", LayersPanel::kName);
    QVERIFY(remove->isEnabled());

    // Colour from a small dialog, linetype and lineweight from the row's combos.
    qthosttest::whenShown("Layer Colour", [](QWidget* w) {
      QSpinBox* spin = w->findChild<QSpinBox*>();
      spin->selectAll();
      QTest::keyClicks(spin, "5");
      buttonOf(w, "OK")->click();
    });
    p.click("Walls", LayersPanel::kColour);
    QCOMPARE(layer(d, L"Walls")->colorIndex(), short(5));
    QCOMPARE(p.text("Walls", LayersPanel::kColour), QString("5 blue"));
    QComboBox* linetype = p.combo("Walls", LayersPanel::kLinetype);
    QCOMPARE(linetype->currentText(), QString("Continuous"));
    linetype->setFocus();
    QTest::keyClick(linetype, Qt::Key_Down);
    QCoreApplication::processEvents();
    QCOMPARE(QString::fromStdString(layer(d, L"Walls")->linetypeName().toUtf8()), "DASHED");
    QComboBox* weight = p.combo("Walls", LayersPanel::kLineweight);
    weight->setFocus();
    QTest::keyClick(weight, Qt::Key_End);
    QCoreApplication::processEvents();
    QCOMPARE(int(layer(d, L"Walls")->lineWeight()), 211);
    QCOMPARE(weight->currentText(), QString("2.11 mm"));

    // New names the layer in place; a name with a blank goes through quoted.
    p.press("New");
    QVERIFY(!layer(d, L"Layer1").isNull());
    QLineEdit* editor = nullptr;
    for (QLineEdit* e : t->viewport()->findChildren<QLineEdit*>())
      if (e->isVisible()) editor = e;
    QVERIFY(editor);
    editor->selectAll();
    QTest::keyClicks(editor, "Stair well");
    QTest::keyClick(editor, Qt::Key_Return);
    // The editor hands its text over from the event loop.
    QTRY_VERIFY(layer(d, L"Layer1").isNull());
    QVERIFY(!layer(d, L"Stair well").isNull());
    QVERIFY(p.row("Stair well") >= 0);

    p.click("Stair well", LayersPanel::kName);
    p.press("Set Current");
    QCOMPARE(currentLayer(d), QString("Stair well"));
    QCOMPARE(p.text("Stair well", LayersPanel::kCurrent), QString::fromUtf8("\u2713"));
    QCOMPARE(p.text("0", LayersPanel::kCurrent), QString());

    p.click("Spare room", LayersPanel::kName);
    p.press("Delete");
    QVERIFY(layer(d, L"Spare room").isNull());
    QCOMPARE(p.row("Spare room"), -1);
    QVERIFY2(d.transcript().find("Layer Spare room deleted\n") != std::string::npos,
             d.transcript().c_str());

    // What is typed on the command line shows too.
    d.type("-LAYER NEW Typed");
    d.type("-LAYER OFF typed");
    QVERIFY(p.row("Typed") >= 0);
    QCOMPARE(p.text("Typed", LayersPanel::kOn), QString("Off"));

    // While a typed command waits for its words the panel takes no clicks: they would become
    // those words.
    d.whenAsked("Delete]: ", [&] {
      QVERIFY(!p.panel->isEnabled());
      p.click("Walls", LayersPanel::kOn);
      d.whenAsked("Layer to freeze: ", [&] { d.type("walls"); });
      d.type("Freeze");
    });
    d.type("-LAYER");
    QTRY_VERIFY(layer(d, L"Walls")->isFrozen());
    QVERIFY(!layer(d, L"Walls")->isOff());
    QVERIFY(p.panel->isEnabled());
    d.type("-LAYER THAW Walls");

    d.type("SAVE");
    const auto read = testsupport::ezdxf(
        "doc = ezdxf.readfile(path)\n"
        "for l in sorted(doc.layers, key=lambda l: l.dxf.name):\n"
        "    if l.dxf.name == 'Defpoints': continue  # ezdxf makes it on reading\n"
        "    print(l.dxf.name, l.color, l.dxf.linetype, l.dxf.get('lineweight', -3), l.is_off(),"
        " l.is_frozen())\n"
        "print(doc.header['$CLAYER'])\n",
        plan);
    QVERIFY2(read.exitCode == 0, read.output.c_str());
    QCOMPARE(QString::fromStdString(read.output), QString("0 7 Continuous -3 False False\n"
                                                          "Stair well 7 Continuous -3 False False\n"
                                                          "Typed 7 Continuous -3 True False\n"
                                                          "Walls 5 DASHED 211 False False\n"
                                                          "Stair well\n"));
  }

  // A real drawing of many layers, sorted without regard to case; the screenshot is for a
  // person to look at.
  void showsADrawingOfManyLayers() {
    const fs::path drawing =
        testsupport::corpusDir() / "r2007_cadreproj_korean_utf8_64layers_3mb.dxf";
    if (testsupport::corpusDir().empty() || !fs::exists(drawing))
      QSKIP("the corpus drawing r2007_cadreproj_korean_utf8_64layers_3mb.dxf is absent");
    Desktop d(config());
    d.window->sendWithPath("OPEN", QString::fromStdString(drawing.string()));
    Panel p(d);
    d.window->resize(1500, 900);
    d.window->resizeDocks({p.dock}, {620}, Qt::Horizontal);
    QCoreApplication::processEvents();

    OdDbLayerTablePtr layers = d.app->currentDatabase()->getLayerTableId().safeOpenObject();
    int count = 0;
    for (OdDbSymbolTableIteratorPtr it = layers->newIterator(); !it->done(); it->step()) ++count;
    QCOMPARE(p.table->rowCount(), count);
    for (int row = 1; row < count; ++row)
      QVERIFY(QString::compare(p.panel->layerAt(row - 1), p.panel->layerAt(row),
                               Qt::CaseInsensitive) <= 0);
    QVERIFY(p.row(currentLayer(d)) >= 0);
    QCOMPARE(p.text(currentLayer(d), LayersPanel::kCurrent), QString::fromUtf8("\u2713"));
    p.panel->grab().save("/tmp/layers-panel.png");
    d.window->grab().save("/tmp/layers-window.png");
  }
};

QTEST_MAIN(LayersPanelTest)
#include "LayersPanelTest.moc"

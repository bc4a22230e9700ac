// The desktop host's window driven as a drafter drives it: commands typed on the command
// line, menu items, tabs, the drawing view's layer list and status bar, plotting, closing with
// unsaved changes, dropped files, and the standards module loaded from the configuration, all
// on real drawings and a real configuration file.

#include <QAction>
#include <QComboBox>
#include <QDockWidget>
#include <QLabel>
#include <QMenuBar>
#include <QMimeData>
#include <QStatusBar>
#include <QTabWidget>
#include <QUrl>
#include <fstream>

#include "DesktopTestSupport.h"
#include "HostConfigTree.h"
#include "HostDocument.h"
#include "HostDrawingView.h"
#include "OdDbSymbolTable.h"
#include "StAppServices.h"
#include "StManager.h"
#include "StManagerCache.h"
#include "StManagerReactor.h"
#include "StSettingsStorage.h"

using desktoptest::clickWhenShows;
using desktoptest::Desktop;
namespace fs = std::filesystem;

namespace {
// The menu item with this text (without '&').
QAction* menuAction(QMainWindow& window, const QString& menu, const QString& item) {
  for (QAction* top : window.menuBar()->actions())
    if (top->text().remove('&') == menu)
      for (QAction* action : top->menu()->actions())
        if (action->text().remove('&') == item) return action;
  return nullptr;
}

bool hasLayer(Desktop& d, const wchar_t* name) {
  OdDbDatabase* db = d.app->currentDatabase();
  OdDbSymbolTablePtr layers = db->getLayerTableId().safeOpenObject();
  return layers->has(OdString(name));
}

struct NewViolations : st::StManagerReactor {
  void newViolation(st::StDWSPlugin*, st::StError*) override { ++count; }
  int count = 0;
};
}  // namespace

class DesktopWindowTest : public QObject, desktoptest::ExampleFolder {
  Q_OBJECT

 private:
 private slots:
  void init() {
    const std::string error = rewriteExample();
    QVERIFY2(error.empty(), error.c_str());
  }

  // Open, every -LAYER form, CHANGE and SAVE through the command paths the menus use; ezdxf
  // reads what was saved.
  void editAndSaveThroughCommands() {
    Desktop d(config);
    d.window->sendWithPath("OPEN", QString::fromStdString(plan.string()));
    QCOMPARE(d.window->tabs()->count(), 1);
    QCOMPARE(d.window->windowTitle(), QString("floor-plan.dxf[*] - stdesk"));
    QVERIFY(!d.window->isWindowModified());

    d.type("-LAYER NEW Kitchen");
    d.type("-LAYER COLOR 3 Kitchen");
    d.type("-LAYER LTYPE Continuous Kitchen");
    d.type("-LAYER NEW Hall");
    d.type("-LAYER RENAME Hall Corridor");
    d.type("-LAYER OFF Corridor");
    d.type("-LAYER NEW Store");
    d.type("-LAYER FREEZE Store");
    d.type("-LAYER THAW Store");
    d.type("-LAYER SET Kitchen");
    d.type("SELECT ALL");
    d.type("CHANGE LAYER Kitchen");
    QVERIFY(d.window->isWindowModified());
    QCOMPARE(d.window->tabs()->tabText(0), QString("floor-plan.dxf*"));

    QAction* save = menuAction(*d.window, "File", "Save");
    QVERIFY(save && save->isEnabled());
    save->trigger();
    QVERIFY2(!d.window->isWindowModified(), d.transcript().c_str());
    const std::string layers =
        testsupport::ezdxf(
            "d = ezdxf.readfile(sys.argv[1])\n"
            "for n in ('Kitchen', 'Corridor', 'Store'):\n"
            "  l = d.layers.get(n); print(n, l.dxf.color, l.is_off(), l.is_frozen())\n"
            "print(d.header['$CLAYER'], {e.dxf.layer for e in d.modelspace()})\n",
            plan)
            .output;
    QCOMPARE(QString::fromStdString(layers),
             QString("Kitchen 3 False False\nCorridor -7 True False\nStore 7 False False\n"
                     "Kitchen {'Kitchen'}\n"));
  }

  // The toolbar's layer list shows the selection's layer and moves the selection to the layer
  // chosen (a name with a blank too), the same path as typing CHANGE LAYER; the status bar
  // shows the cursor's coordinates; the background is remembered; PLOT writes the view.
  void layerListCoordinatesAndPlot() {
    {
      Desktop d(config);
      d.window->sendWithPath("OPEN", QString::fromStdString(plan.string()));
      QComboBox* layers = d.window->layerList();
      d.type("-LAYER NEW \"Wet Room\"");
      d.type("SELECT ALL");
      const int wet = layers->findText("Wet Room");
      QVERIFY2(wet >= 0, d.transcript().c_str());
      emit layers->activated(wet);
      QVERIFY2(d.transcript().find("entities moved to layer Wet Room") != std::string::npos,
               d.transcript().c_str());
      QCOMPARE(layers->currentText(), QString("Wet Room"));
      d.type("SELECT NONE");
      QCOMPARE(layers->currentIndex(), -1);
      QVERIFY(!layers->placeholderText().isEmpty());

      HostDrawingView* view = d.window->viewOf(d.app->documents().curDocument());
      QVERIFY(view && QTest::qWaitForWindowExposed(d.window.get()));
      // A module's highlight reaches the document's view, zoomed to what it names.
      const HostViewEntity& first = view->scene().entities().front();
      const double before = view->transform().scale;
      QVERIFY(d.app->highlightObjects(d.app->currentDatabase(), OdDbObjectIdArray{first.id}, true));
      QVERIFY(view->transform().scale > before);
      QVERIFY(d.app->highlightObjects(d.app->currentDatabase(), OdDbObjectIdArray(), false));
      view->zoomExtents();
      const QPoint middle(view->width() / 2, view->height() / 2);
      QTest::mouseMove(view, middle);
      const HostViewVec at = view->transform().toDrawing(middle);
      const QStringList shown = d.window->coordinates()->text().split(", ");
      QCOMPARE(shown.size(), 2);
      QVERIFY(std::abs(shown[0].toDouble() - at.x) < 0.01 &&
              std::abs(shown[1].toDouble() - at.y) < 0.01);

      // Typing over the view goes to the command line.
      QTest::mouseClick(view, Qt::LeftButton, {}, middle);
      QTest::keyClicks(view, "zoom");
      QCOMPARE(d.window->commandLine()->input()->text(), QString("zoom"));
      d.window->commandLine()->input()->clear();

      QAction* dark = menuAction(*d.window, "View", "Dark Background");
      QVERIFY(dark && dark->isChecked() && view->darkBackground());
      dark->trigger();
      QVERIFY(!view->darkBackground());

      const fs::path pdf = dir.path() / "plan.pdf";
      d.window->sendWithPath("PLOT", QString::fromStdString(pdf.string()));
      QVERIFY2(testsupport::readBytes(pdf).rfind("%PDF-", 0) == 0, d.transcript().c_str());
      d.type("SAVE");
    }
    QVERIFY(
        testsupport::ezdxf("print({e.dxf.layer for e in ezdxf.readfile(path).modelspace()})", plan)
            .output == "{'Wet Room'}\n");
    auto tree = HostConfigTree::open(config);
    auto dark = tree->getValue({"Desktop"}, "DarkBackground");
    QVERIFY(dark && !dark->getBool());
  }

  // The window with a real many-layered drawing, for a person to look at.
  void screenshotOfARealDrawing() {
    const fs::path drawing = testsupport::corpusDir() / "r14_dxf2gcode_uap212718_33layers.dxf";
    if (testsupport::corpusDir().empty() || !fs::exists(drawing))
      QSKIP("the shared corpus of drawings is absent");
    Desktop d(config);
    d.window->sendWithPath("OPEN", QString::fromStdString(drawing.string()));
    QVERIFY(QTest::qWaitForWindowExposed(d.window.get()));
    HostDrawingView* view = d.window->viewOf(d.app->documents().curDocument());
    QVERIFY(view && view->scene().entities().size() > 100);
    QVERIFY(d.window->layersDock()->isVisible());
    QCOMPARE(d.window->layersDock()->windowTitle(), QString("Layers"));
    QTest::mouseMove(view, QPoint(view->width() / 3, view->height() / 3));
    fs::create_directories("/tmp/staudit-qt-shots");
    QVERIFY(d.window->grab().save("/tmp/staudit-qt-shots/stdesk-drawing.png"));
    QVERIFY(view->lastStats().primitivesDrawn > 100);
    // What could not be drawn is told on the status bar, once the drawing shows.
    const QString notDrawn = view->scene().unsupportedSummary();
    if (!notDrawn.isEmpty()) QTRY_COMPARE(d.window->statusBar()->currentMessage(), notDrawn);
    menuAction(*d.window, "View", "Dark Background")->trigger();
    QVERIFY(d.window->grab().save("/tmp/staudit-qt-shots/stdesk-drawing-light.png"));
  }

  // A command typed without its words prompts for them, answered from the line; Escape
  // cancels. History and completion as a command line has them.
  void promptsHistoryAndCompletion() {
    Desktop d(config);
    d.window->sendWithPath("OPEN", QString::fromStdString(plan.string()));
    d.whenAsked("Delete]: ", [&] { d.type("new Porch"); });
    d.type("-LAYER");
    QVERIFY2(hasLayer(d, L"Porch"), d.transcript().c_str());

    d.whenAsked("Delete]: ",
                [&] { QTest::keyClick(d.window->commandLine()->input(), Qt::Key_Escape); });
    d.type("-LAYER");
    QVERIFY(d.transcript().find("*cancel*") != std::string::npos);

    QLineEdit* input = d.window->commandLine()->input();
    QTest::keyClick(input, Qt::Key_Up);
    QCOMPARE(input->text(), QString("-LAYER"));
    input->clear();
    QTest::keyClicks(input, "CHECKSTAN");
    QTest::keyClick(input, Qt::Key_Tab);
    QCOMPARE(input->text(), QString("CHECKSTANDARDS"));
  }

  // A changed drawing asks before it closes, from the window's close box and from the tab's;
  // Cancel keeps it open, No closes it without saving.
  void changedDrawingAsksBeforeClosing() {
    Desktop d(config);
    d.window->sendWithPath("OPEN", QString::fromStdString(plan.string()));
    d.type("-LAYER NEW Kitchen");
    const auto before = fs::last_write_time(plan);

    clickWhenShows("Close", "Cancel");
    QVERIFY(!d.window->close());
    QCOMPARE(d.app->documents().documentCount(), 1);

    // QUIT typed by a person asks as the close box does.
    clickWhenShows("Close", "Cancel");
    d.type("QUIT");
    QTest::qWait(100);
    QVERIFY(d.window->isVisible());
    QCOMPARE(d.app->documents().documentCount(), 1);

    clickWhenShows("Close", "Cancel");
    emit d.window->tabs()->tabCloseRequested(0);
    QCOMPARE(d.app->documents().documentCount(), 1);

    clickWhenShows("Close", "No");
    emit d.window->tabs()->tabCloseRequested(0);
    QCOMPARE(d.app->documents().documentCount(), 0);
    QCOMPARE(d.window->tabs()->count(), 0);
    QCOMPARE(fs::last_write_time(plan), before);
    QVERIFY(!menuAction(*d.window, "File", "Save")->isEnabled());
  }

  // Tabs follow the host's current document both ways, and the module attaches a manager to
  // the drawing made current; a layer made on the command line reaches the module as a
  // modified object and is announced as a new violation.
  void tabsAndTheModuleFollowTheCurrentDrawing() {
    fs::copy_file(plan, dir.path() / "second.dxf");
    Desktop d(config);
    d.window->sendWithPath("OPEN", QString::fromStdString(plan.string()));
    d.window->sendWithPath("OPEN", QString::fromStdString((dir.path() / "second.dxf").string()));
    QCOMPARE(d.window->tabs()->count(), 2);
    QCOMPARE(d.app->documents().curDocument()->title(), OdString(L"second.dxf"));

    d.window->tabs()->setCurrentIndex(0);
    HostDocument* first = d.app->documents().curDocument();
    QCOMPARE(first->title(), OdString(L"floor-plan.dxf"));
    QCOMPARE(d.window->windowTitle(), QString("floor-plan.dxf[*] - stdesk"));
    st::StManager* manager = st::stManagerCache()->getManager(first->database());
    QVERIFY2(manager, d.transcript().c_str());

    NewViolations listener;
    manager->addReactor(&listener);
    d.type("-LAYER NEW NotInTheStandard");
    manager->removeReactor(&listener);
    QVERIFY2(listener.count >= 1, d.transcript().c_str());

    // The module's items are enabled while its commands are registered: the settings
    // dialog's comes with the module's user interface, and goes with it.
    QVERIFY(menuAction(*d.window, "Standards", "Check Standards...")->isEnabled());
    QVERIFY(menuAction(*d.window, "Standards", "Configure Standards...")->isEnabled());
    QVERIFY(menuAction(*d.window, "Standards", "Standards Settings...")->isEnabled());
    QVERIFY(d.app->unloadModule(L"StandardsAuditUi"));
    QAction* settings = menuAction(*d.window, "Standards", "Standards Settings...");
    emit qobject_cast<QMenu*>(settings->parent())->aboutToShow();
    QVERIFY(!settings->isEnabled());

    // A module the configuration names that does not load is named with the loader's reason,
    // and the host runs on.
    HostConfigTree& tree = d.app->configTree();
    tree.createKey({"Applications"}, "NoSuchModule");
    tree.setValue({"Applications", "NoSuchModule"}, "LoadOnStartup", OdVariant(true));
    tree.createKey({"Applications"}, "../evil");
    tree.setValue({"Applications", "../evil"}, "LoadOnStartup", OdVariant(true));
    QCOMPARE(StartupModules::loadAll(*d.app).size(), std::size_t(2));
    QVERIFY2(
        d.transcript().find("module NoSuchModule was not loaded: found no") != std::string::npos,
        d.transcript().c_str());
    QVERIFY2(d.transcript().find("module ../evil was not loaded: not on the module search path") !=
                 std::string::npos,
             d.transcript().c_str());
    d.type("-LAYER NEW StillWorking");
    QVERIFY(hasLayer(d, L"StillWorking"));
  }

  // SAVE runs the silent standards check first when the settings ask for it.
  void saveChecksFirstWhenAsked() {
    Desktop d(config);
    d.window->sendWithPath("OPEN", QString::fromStdString(plan.string()));
    stSettingsStorage()->setAutoFixCommands(st::kStCheckOnSave);
    // The check's report shows while the file on disk is still the one opened.
    fs::file_time_type before = fs::last_write_time(plan);
    int reports = 0;
    bool diskUntouched = false;
    const auto closeReport = [&] {
      qthosttest::whenShown("Standard Errors found", [&](QWidget* window) {
        ++reports;
        diskUntouched = fs::last_write_time(plan) == before;
        desktoptest::buttonOf(window, "Cancel")->click();
      });
    };
    closeReport();
    d.type("SAVE");
    QVERIFY2(reports == 1 && diskUntouched, d.transcript().c_str());
    QVERIFY(fs::last_write_time(plan) != before);

    // So does the save that closing a changed drawing offers.
    d.type("-LAYER NEW Kitchen");
    before = fs::last_write_time(plan);
    clickWhenShows("Close", "Yes");
    closeReport();
    d.type("CLOSE");
    QVERIFY2(reports == 2 && diskUntouched, d.transcript().c_str());
    QCOMPARE(d.app->documents().documentCount(), 0);
    QVERIFY(testsupport::ezdxf("print(ezdxf.readfile(path).layers.has_entry('Kitchen'))", plan)
                .output == "True\n");
  }

  // Recent files and the window's layout are kept in the configuration file; a dropped
  // drawing opens; a drawing that cannot be read is named with the reader's reason and
  // nothing else closes; a failed save keeps the old file whole and the drawing changed.
  void keptSettingsDropsAndBadInput() {
    const fs::path broken = dir.path() / "broken.dxf";
    std::ofstream(broken) << "  0\nSECTION\n  2\nHEADER\n  9\n$ACADVER\n  1\n";
    {
      Desktop d(config);
      QMimeData mime;
      mime.setUrls({QUrl::fromLocalFile(QString::fromStdString(plan.string()))});
      QVERIFY(d.window->openDropped(mime));
      QVERIFY2(d.window->tabs()->count() == 1, d.transcript().c_str());

      // A person who chose the file from a menu is told in a box as well.
      clickWhenShows("Open", "OK");
      d.window->sendWithPath("OPEN", QString::fromStdString(broken.string()));
      QVERIFY2(d.transcript().find("broken.dxf") != std::string::npos, d.transcript().c_str());
      QVERIFY2(d.transcript().find("line") != std::string::npos, d.transcript().c_str());
      QCOMPARE(d.window->tabs()->count(), 1);

      d.type("-LAYER NEW Kitchen");
      const std::string original = testsupport::readBytes(plan);
      fs::permissions(plan,
                      fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write,
                      fs::perm_options::remove);
      d.type("SAVE");
      QCOMPARE(testsupport::readBytes(plan), original);
      QVERIFY(d.app->documents().curDocument()->isModified());
      QVERIFY(d.window->isWindowModified());
      d.app->documents().closeAll();
      d.window->close();
    }
    auto tree = HostConfigTree::open(config);
    auto recent = tree->getValue({"Desktop"}, "RecentFiles");
    QVERIFY(recent && recent->getString().toUtf8().find("floor-plan.dxf") != std::string::npos);
    QVERIFY(tree->getValue({"Desktop"}, "WindowGeometry").has_value());
    QVERIFY(tree->hasKey({"Applications", "StandardsAudit"}));
  }
};

QTEST_MAIN(DesktopWindowTest)
#include "DesktopWindowTest.moc"

// The Configure Standards dialog driven as a user drives it, in the real desktop host with the
// real modules and standard plug-ins over the bundled example: editing the list of standards
// files (the file dialog, drop, Locate..., the refusals), the plug-ins page and what OK and
// "Check Standards..." write, read back from the saved drawing by stcheck and by ezdxf.

#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QTextEdit>
#include <QUrl>
#include <fstream>

#include "DesktopTestSupport.h"
#include "HostConfigTree.h"
#include "HostQtText.h"
#include "OdDbDatabase.h"
#include "OdError.h"
#include "OdRxClass.h"
#include "StAppServices.h"
#include "StEnumDWSPlugin.h"
#include "StManager.h"
#include "StManagerCache.h"
#include "StPluginInfo.h"
#include "StPluginRegistrator.h"
#include "StStringTable.h"
#include "StUiConfigureStandardsDlg.h"
#include "StUiIcons.h"
#include "StUiPluginsTabDlg.h"
#include "StUiStandardsTabDlg.h"

using desktoptest::Desktop;
using Dialog = stui::StUiConfigureStandardsDlg;
namespace fs = std::filesystem;

namespace {

QString str(const fs::path& path) {
  return QString::fromStdString(path.string());
}

QStringList rowsOf(const QListWidget* list) {
  QStringList rows;
  for (int i = 0; i < list->count(); ++i) rows << list->item(i)->text();
  return rows;
}

// Whether row `row` shows the icon `id`.
bool showsIcon(const QListWidget* list, int row, int id) {
  return list->item(row)->icon().pixmap(16).toImage() == stui::stIcon(id).pixmap(16).toImage();
}

// While it lives, answers every message box with its first button, keeping its text.
struct Answers {
  QStringList texts;
  QTimer timer;
  Answers() {
    QObject::connect(&timer, &QTimer::timeout, [this] {
      for (QWidget* w : QApplication::topLevelWidgets())
        if (auto* box = qobject_cast<QMessageBox*>(w); box && box->isVisible()) {
          texts << box->text();
          box->buttons().constFirst()->click();
        }
    });
    timer.start(20);
  }
};

// Once the file dialog shows, types `file` in its name box and accepts it.
void pickWhenShown(const fs::path& file) {
  qthosttest::whenShown("Select Standards File", [file](QWidget* w) {
    auto* name = w->findChild<QLineEdit*>("fileNameEdit");
    name->setText(str(file));
    QTest::keyClick(name, Qt::Key_Return);
  });
}

// Once the Check Standards dialog shows, keeps whether it shows a problem and closes it as a
// user does, confirming that the check stops.
void closeCheckWhenShown(bool* problem = nullptr) {
  qthosttest::whenShown("Check Standards", [problem](QWidget* w) {
    if (problem) *problem = !w->findChild<QPlainTextEdit*>("problem")->toPlainText().isEmpty();
    desktoptest::clickWhenShows("Checking Not Finished.", "OK");
    desktoptest::buttonOf(w, "Close")->click();
  });
}

void shoot(QWidget* w, const char* name) {
  fs::create_directories("/tmp/staudit-qt-shots");
  w->grab().save(QStringLiteral("/tmp/staudit-qt-shots/%1.png").arg(name));
}

// The association of a saved drawing as ezdxf reads it: the paths joined by '|'.
QString associationOf(const fs::path& drawing) {
  auto read = testsupport::ezdxf(
      "doc = ezdxf.readfile(path)\n"
      "d = doc.rootdict.get('AcStStandard')\n"
      "print('|'.join(next(t.value for t in d[str(i)].tags if t.code == 1)\n"
      "               for i in range(len(d))) if d is not None else 'none')\n",
      drawing);
  return QString::fromStdString(read.output).trimmed();
}

}  // namespace

class ConfigureStandardsDialogTest : public QObject, desktoptest::ExampleFolder {
  Q_OBJECT

 private:
  OdDbDatabase* open(Desktop& d, const fs::path& drawing) {
    d.window->sendWithPath("OPEN", str(drawing));
    return d.app->currentDatabase();
  }

  // Runs STANDARDS and `act` on the dialog once it shows; a dialog `act` leaves open is
  // cancelled afterwards, so that a failed comparison inside it cannot hang the test.
  void configure(Desktop& d, const std::function<void(Dialog*)>& act) {
    QVERIFY2(desktoptest::runDialog<Dialog>(d, "STANDARDS", "Configure Standards",
                                            Dialog::kCancelled, act),
             d.transcript().c_str());
  }

 private slots:
  void init() {
    const std::string error = rewriteExample();
    QVERIFY2(error.empty(), error.c_str());
  }

  // The file list: a name already listed (folder disregarded, case respected), a file that is
  // no drawing, a missing file found again with Locate..., a drop, and Up then OK writing the
  // new order into the drawing.
  void standardsPageEditsTheListAndOkWritesIt() {
    fs::create_directories(dir.path() / "other");
    fs::copy_file(office, dir.path() / "other" / "office-standards.dws");
    fs::copy_file(office, dir.path() / "other" / "Office-Standards.dws");
    std::ofstream(dir.path() / "notes.dws") << "0\nSECTION\n2\nBOGUS\n";
    fs::rename(site, dir.path() / "other" / "site-standards.dws");
    QString readerReason;
    try {
      OdDbDatabase::readFile(dir.path() / "notes.dws");
    } catch (const OdError& error) {
      readerReason = toQString(error.description());
    }
    QVERIFY(!readerReason.isEmpty());

    Desktop d(config);
    QVERIFY(open(d, plan));
    Answers answers;
    configure(d, [&](Dialog* dialog) {
      QCOMPARE(dialog->tabs()->tabText(0), QString("Standards"));
      QCOMPARE(dialog->tabs()->tabText(1), QString("Plugins"));
      stui::StUiStandardsTabDlg* page = dialog->standardsPage();
      QListWidget* list = page->fileList();
      QCOMPARE(rowsOf(list), QStringList({"office-standards", "site-standards"}));
      QVERIFY(showsIcon(list, 0, 113));
      QVERIFY(showsIcon(list, 1, 114));
      QCOMPARE(page->description()->toPlainText().section('\n', 0, 0), QString("Standards file:"));
      QVERIFY(page->description()->toPlainText().contains("Last Modified:\n"));
      QVERIFY(!page->upButton()->isEnabled() && page->downButton()->isEnabled());
      QVERIFY(!page->locateButton()->isEnabled());
      QVERIFY(dialog->checkButton()->isEnabled());

      // The missing file: described without a date, then found again where it went.
      list->setCurrentRow(1);
      QCOMPARE(page->description()->toPlainText(),
               "Standards file:\n" + list->item(1)->toolTip() + "\n(File not found)\n\n");
      QVERIFY(page->locateButton()->isEnabled() && page->upButton()->isEnabled());
      shoot(dialog, "configure-standards-page");
      pickWhenShown(dir.path() / "other" / "site-standards.dws");
      QTest::mouseClick(page->locateButton(), Qt::LeftButton);
      QVERIFY(showsIcon(list, 1, 113));
      QCOMPARE(list->item(1)->toolTip(), str(dir.path() / "other" / "site-standards.dws"));

      // Refused: the same name from another folder, then a file that is no drawing.
      pickWhenShown(dir.path() / "other" / "office-standards.dws");
      QTest::mouseClick(page->addButton(), Qt::LeftButton);
      pickWhenShown(dir.path() / "notes.dws");
      QTest::mouseClick(page->addButton(), Qt::LeftButton);
      QCOMPARE(answers.texts,
               QStringList({toQString(stLoadString(kStrDuplicateFileName)), readerReason}));
      QCOMPARE(rowsOf(list).size(), 2);

      // Accepted: the name in other letters through "+", and a drop on the list.
      pickWhenShown(dir.path() / "other" / "Office-Standards.dws");
      QTest::mouseClick(page->addButton(), Qt::LeftButton);
      QCOMPARE(list->currentRow(), 2);
      QVERIFY(page->upButton()->isEnabled() && !page->downButton()->isEnabled());
      page->removeButton()->click();
      QMimeData dropped;
      dropped.setUrls({QUrl::fromLocalFile(str(dir.path() / "other" / "Office-Standards.dws"))});
      QDropEvent drop(QPointF(5, 5), Qt::CopyAction, &dropped, Qt::LeftButton, Qt::NoModifier);
      QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &dropped, Qt::LeftButton, Qt::NoModifier);
      QApplication::sendEvent(list->viewport(), &enter);
      QVERIFY(enter.isAccepted());
      QApplication::sendEvent(list->viewport(), &drop);
      QCOMPARE(rowsOf(list),
               QStringList({"office-standards", "site-standards", "Office-Standards"}));

      // Up: the dropped file goes first; OK writes that order.
      QTest::mouseClick(page->upButton(), Qt::LeftButton);
      QTest::mouseClick(page->upButton(), Qt::LeftButton);
      QVERIFY(!page->upButton()->isEnabled() && page->downButton()->isEnabled());
      QTest::mouseClick(dialog->okButton(), Qt::LeftButton);
      QVERIFY(!dialog->isVisible());
    });
    QCOMPARE(answers.texts.size(), 2);
    d.type("SAVE");
    const QString order = str(dir.path() / "other" / "Office-Standards.dws") +
                          "|office-standards.dws|" +
                          str(dir.path() / "other" / "site-standards.dws");
    QCOMPARE(associationOf(plan), order);
    auto listed = testsupport::runStcheckIn(dir.path(), config, {"standards", "floor-plan.dxf"});
    QCOMPARE(QString::fromStdString(listed.output), QString(order).replace('|', '\n') + "\n");
  }

  // Removing every file with a manager present writes an empty list and drops the manager;
  // Cancel before that writes nothing.
  void removingEveryFileDropsTheManager() {
    Desktop d(config);
    OdDbDatabase* db = open(d, plan);
    QVERIFY(db && st::stManagerCache()->hasManager(db));
    configure(d, [](Dialog* dialog) {
      dialog->standardsPage()->removeButton()->click();
      QString settings;
      qthosttest::whenShown("Standards Settings", [&](QWidget* w) {
        settings = w->metaObject()->className();
        desktoptest::buttonOf(w, "Cancel")->click();
      });
      QTest::mouseClick(dialog->settingsButton(), Qt::LeftButton);
      QCOMPARE(settings, QString("stui::StUiSettingsDlg"));
      QTest::mouseClick(dialog->helpButton(), Qt::LeftButton);
      QTest::mouseClick(dialog->cancelButton(), Qt::LeftButton);
      QCOMPARE(dialog->result(), Dialog::kCancelled);
    });
    QCOMPARE(st::stManagerCache()->getManager(db)->getStandardsFiles(db).size(), 2u);
    QVERIFY2(d.transcript().find("\"IDH_STANDARDS\"") != std::string::npos, d.transcript().c_str());
    configure(d, [](Dialog* dialog) {
      stui::StUiStandardsTabDlg* page = dialog->standardsPage();
      while (page->removeButton()->isEnabled())
        QTest::mouseClick(page->removeButton(), Qt::LeftButton);
      QCOMPARE(page->fileList()->count(), 0);
      QVERIFY(page->description()->toPlainText().isEmpty());
      QVERIFY(!dialog->checkButton()->isEnabled());
      QTest::mouseClick(dialog->okButton(), Qt::LeftButton);
    });
    QVERIFY(!st::stManagerCache()->hasManager(db));
    d.type("SAVE");
    QCOMPARE(associationOf(plan), QString(""));
  }

  // The plug-ins as registered, a class that cannot be created told on the command line and
  // left out; no plug-in checked: OK says so and stays, "Check Standards..." says so, closes
  // and still checks.
  void pluginsPageAndNoPluginChecked() {
    {
      Desktop first(config);  // writes the default registration
    }
    const HostConfigTree::Path bogus = {"cmddata", "StandardsAudit", "Plugins", "StStandardPlugins",
                                        "StDWSNoSuchPlugin"};
    {
      auto tree = HostConfigTree::open(config);
      QVERIFY(tree->createKey(HostConfigTree::Path(bogus.begin(), bogus.end() - 1), bogus.back()));
      tree->setValue(bogus, "PluginClassName", OdVariant(OdString(L"StDWSNoSuchPlugin")));
      tree->setValue(bogus, "PluginInUse", std::int32_t{1});
    }
    Desktop d(config);
    QVERIFY(open(d, plan));
    Answers answers;
    configure(d, [&](Dialog* dialog) {
      stui::StUiPluginsTabDlg* page = dialog->pluginsPage();
      QListWidget* list = page->pluginList();
      QCOMPARE(list->count(), 4);
      for (int i = 0; i < list->count(); ++i) {
        QCOMPARE(list->item(i)->checkState(), Qt::Checked);
        QVERIFY(!list->item(i)->icon().isNull());
      }
      dialog->tabs()->setCurrentIndex(1);
      list->setCurrentRow(0);
      const QString described = page->description()->toPlainText();
      QVERIFY2(described.startsWith("Purpose:\n" + toQString(page->pluginAt(0)->purpose())),
               qPrintable(described));
      QVERIFY(described.contains("\n\nVersion:\n") && described.contains("\n\nPublisher:\n"));
      shoot(dialog, "configure-plugins-page");

      for (int i = 0; i < list->count(); ++i) list->item(i)->setCheckState(Qt::Unchecked);
      QVERIFY(!dialog->checkButton()->isEnabled());
      QTest::mouseClick(dialog->okButton(), Qt::LeftButton);
      QVERIFY(dialog->isVisible());
      QCOMPARE(answers.texts, QStringList({toQString(stLoadString(kStrNoPluginChecked))}));
      list->item(1)->setCheckState(Qt::Checked);
      QVERIFY(dialog->checkButton()->isEnabled());
      list->item(1)->setCheckState(Qt::Unchecked);
      closeCheckWhenShown();
      dialog->checkStandards();
      QCOMPARE(dialog->result(), Dialog::kCheckStandards);
      QVERIFY(!dialog->isVisible());
    });
    // 106 for OK and for "Check Standards...", then the check's question as it is closed.
    QCOMPARE(answers.texts.mid(0, 2), QStringList(2, toQString(stLoadString(kStrNoPluginChecked))));
    const std::string out = d.transcript();
    QVERIFY2(out.find("Failed to create plugin: StDWSNoSuchPlugin. Please check correct plugin "
                      "registration\n") != std::string::npos,
             out.c_str());
    QVERIFY2(out.find("Command: CHECKSTANDARDS\n") != std::string::npos, out.c_str());
    // Nothing was written: every plug-in is still in use.
    for (const st::StPluginInfo& info : st::stPluginRegistrator()->getPluginInfos())
      QVERIFY(info.inUse);
  }

  // A drawing without standards: both example files added through the file dialog, OK, and
  // the check then finds the drawing's problems; the saved association is what stcheck and
  // ezdxf read.
  void associateThroughTheDialogThenCheck() {
    auto cleared =
        testsupport::runStcheckIn(dir.path(), config, {"standards", "floor-plan.dxf", "--clear"});
    QCOMPARE(cleared.exitCode, 0);
    Desktop d(config);
    QVERIFY(open(d, plan));
    configure(d, [&](Dialog* dialog) {
      QCOMPARE(dialog->standardsPage()->fileList()->count(), 0);
      QVERIFY(!dialog->checkButton()->isEnabled());
      for (const fs::path& file : {office, site}) {
        pickWhenShown(file);
        QTest::mouseClick(dialog->standardsPage()->addButton(), Qt::LeftButton);
      }
      QCOMPARE(rowsOf(dialog->standardsPage()->fileList()),
               QStringList({"office-standards", "site-standards"}));
      QVERIFY(dialog->checkButton()->isEnabled());
      // The text styles plug-in out of use: the registry and the manager hear of it on OK.
      dialog->pluginsPage()->pluginList()->item(2)->setCheckState(Qt::Unchecked);
      QTest::mouseClick(dialog->okButton(), Qt::LeftButton);
    });
    st::StPluginInfo textStyles;
    QVERIFY(st::stPluginRegistrator()->getPluginInfo(L"StDWSTextstylePlugin", textStyles));
    QVERIFY(!textStyles.inUse);
    QStringList used;
    st::StEnumDWSPluginPtr plugins =
        st::stManagerCache()->getManager(d.app->currentDatabase())->getPlugins();
    for (; !plugins->current().isNull(); plugins->next())
      used << toQString(plugins->current()->isA()->name());
    QCOMPARE(used, QStringList({"StDWSDimstylePlugin", "StDWSLayerPlugin", "StDWSLinetypePlugin"}));
    bool problem = false;
    closeCheckWhenShown(&problem);
    d.type("CHECKSTANDARDS");
    QVERIFY2(problem, d.transcript().c_str());
    d.type("SAVE");
    const QString both = str(office) + "|" + str(site);
    QCOMPARE(associationOf(plan), both);
    auto listed = testsupport::runStcheckIn(dir.path(), config, {"standards", "floor-plan.dxf"});
    QCOMPARE(QString::fromStdString(listed.output), QString(both).replace('|', '\n') + "\n");
  }
};

QTEST_MAIN(ConfigureStandardsDialogTest)
#include "ConfigureStandardsDialogTest.moc"

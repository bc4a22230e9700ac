// The Check Standards dialog driven as a user drives it, in the real desktop host with the
// real modules and standard plug-ins over the bundled example: the order and recommendation of
// the replacement rows, a clean drawing, a preferred standards file, closing half way, the
// highlight in the view, ignore marks read back by an independent reader, and a whole session
// whose result stcheck then reports.

#include <QCheckBox>
#include <QLabel>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QTreeWidget>

#include "DesktopTestSupport.h"
#include "HostDrawingView.h"
#include "HostQtText.h"
#include "OdDbDatabase.h"
#include "StAppServices.h"
#include "StFix.h"
#include "StIgnoreMarks.h"
#include "StManager.h"
#include "StManagerCache.h"
#include "StRecordLookup.h"
#include "StSettingsStorage.h"
#include "StUiCheckStandardsDlg.h"
#include "StUiFixRows.h"
#include "StUiIcons.h"
#include "StUiObjectUsers.h"

using desktoptest::clickWhenShows;
using desktoptest::Desktop;
using qthosttest::shownWindow;
using Dialog = stui::StUiCheckStandardsDlg;
namespace fs = std::filesystem;

namespace {

const QString kCompleteTitle = "Check Standards - Check complete";

OdString od(const fs::path& path) {
  return OdString::fromUtf8(path.string());
}

QStringList column(const QTreeWidget* list, int c) {
  QStringList texts;
  for (int i = 0; i < list->topLevelItemCount(); ++i) texts << list->topLevelItem(i)->text(c);
  return texts;
}

// Presses Next until the problem names `object` (quoted, as the plug-ins name objects);
// false when the check ends first.
bool nextUntil(Dialog* dialog, const QString& object) {
  for (int i = 0; i < 50 && dialog->fixList()->isEnabled(); ++i) {
    if (dialog->problemBox()->toPlainText().contains('"' + object + '"')) return true;
    QTest::mouseClick(dialog->nextButton(), Qt::LeftButton);
  }
  return false;
}

// While it lives, answers every completion message with OK, keeping its text and whether the
// dialog was up by then.
struct CompletionMessages {
  QStringList texts;
  QTimer timer;
  CompletionMessages() {
    QObject::connect(&timer, &QTimer::timeout, [this] {
      if (QWidget* w = shownWindow(kCompleteTitle)) {
        texts << qobject_cast<QMessageBox*>(w)->text() +
                     (shownWindow("Check Standards") ? " [dialog shown]" : "");
        desktoptest::buttonOf(w, "OK")->click();
      }
    });
    timer.start(20);
  }
};

// The problems of stcheck's text report in its order: "problem NAME" or "ignored by USER NAME".
QStringList problemsOf(const std::string& report) {
  static const QRegularExpression line("^    (problem|ignored by \\S+)  (\\S+) \\[");
  QStringList found;
  for (const QString& text : QString::fromStdString(report).split('\n'))
    if (QRegularExpressionMatch m = line.match(text); m.hasMatch())
      found << m.captured(1) + " " + m.captured(2);
  return found;
}

}  // namespace

class CheckStandardsDialogTest : public QObject, desktoptest::ExampleFolder {
  Q_OBJECT

 private:
  st::StManager* openPlan(Desktop& d) {
    d.window->sendWithPath("OPEN", QString::fromStdString(plan.string()));
    OdDbDatabase* db = d.app->currentDatabase();
    return db ? st::stManagerCache()->getManager(db) : nullptr;
  }

  // Runs CHECKSTANDARDS and `act` on the dialog once it shows. A dialog `act` leaves open
  // is ended afterwards, so that a failed comparison inside it cannot hang the test.
  void check(Desktop& d, const std::function<void(Dialog*)>& act) {
    QVERIFY2(desktoptest::runDialog<Dialog>(d, "CHECKSTANDARDS", "Check Standards", Dialog::kClosed,
                                            act),
             d.transcript().c_str());
  }

 private slots:
  void init() {
    const std::string error = rewriteExample();
    QVERIFY2(error.empty(), error.c_str());
  }

  // Rows by standards file, then by name, case ignored both times; the plug-in's
  // recommendation first, then the preferred file's first fix, matched by name alone.
  void rowsOrderAndRecommendation() {
    Desktop d(config);  // the engine's classes and the host's path functions
    OdArray<st::StFixPtr> fixes;
    for (auto [name, file] : {std::pair{L"Zeta", L"/s/Site-Standards.dws"},
                              {L"Beta", L"/o/office-standards.dws"},
                              {L"alpha", L"C:\\o\\office-standards.dws"}}) {
      st::StFixPtr fix = st::StFix::createObject();
      fix->setName(name);
      fix->setStandardsFile(file);
      fixes.append(fix);
    }
    stui::StUiFixRows rows(fixes, 0, L"/elsewhere/office-standards.dws");
    QStringList shown;
    for (const auto& row : rows.rows())
      shown << toQString(row.name) + "@" + toQString(row.fileName);
    QCOMPARE(shown, QStringList({"alpha@office-standards.dws", "Beta@office-standards.dws",
                                 "Zeta@Site-Standards.dws"}));
    QCOMPARE(rows.recommendedRow(), 2);
    QCOMPARE(stui::StUiFixRows(fixes, -1, L"/x/SITE-standards.dws").recommendedRow(), 2);
    QCOMPARE(stui::StUiFixRows(fixes, 7, L"/x/Office-Standards.DWS").recommendedRow(), 1);
    QCOMPARE(stui::StUiFixRows(fixes, -1, L"/x/other.dws").recommendedRow(), -1);
    QCOMPARE(stui::StUiFixRows(fixes, -1, OdString()).recommendedRow(), -1);
  }

  // A drawing checked against itself has no problem: the counts come before the dialog shows,
  // which then waits with its controls off; Next checks again; the controls in Tab order;
  // Settings... opens the settings; Help asks for the dialog's page.
  void cleanDrawingTellsTheCountsFirstAndNextChecksAgain() {
    Desktop d(config);
    testsupport::TempDir noHelp;
    d.app->help().setFolder(noHelp.path());
    st::StManager* manager = openPlan(d);
    QVERIFY(manager);
    QVERIFY(manager->setStandardsFiles(d.app->currentDatabase(), {od(plan)}));
    CompletionMessages messages;
    check(d, [&](Dialog* dialog) {
      QCOMPARE(dialog->problemBox()->toPlainText(), QString("Choose Next to check this drawing"));
      for (QWidget* w : QList<QWidget*>{dialog->fixButton(), dialog->fixList(),
                                        dialog->previewList(), dialog->ignoreBox()})
        QVERIFY(!w->isEnabled());
      QTest::keyClick(dialog, Qt::Key_Return);  // Enter is Next
      QStringList order;
      for (QWidget* w = dialog->problemBox(); w != dialog->helpButton(); w = w->nextInFocusChain())
        if (auto* button = qobject_cast<QAbstractButton*>(w))
          order << button->text();
        else if (qobject_cast<QTreeWidget*>(w))
          order << w->objectName();
      QCOMPARE(order.join('|'), QString("replacements|preview|Mark this problem as ignored|Fix|"
                                        "Next |Settings...|Zoom to|Close"));
      QString settings;
      qthosttest::whenShown("Standards Settings", [&](QWidget* w) {
        settings = w->metaObject()->className();
        desktoptest::buttonOf(w, "Cancel")->click();
      });
      QTest::mouseClick(dialog->settingsButton(), Qt::LeftButton);
      QCOMPARE(settings, QString("stui::StUiSettingsDlg"));
      QTest::mouseClick(dialog->helpButton(), Qt::LeftButton);
      QTest::mouseClick(dialog->closeButton(), Qt::LeftButton);  // complete: no question
      QCOMPARE(dialog->result(), Dialog::kClosed);
    });
    const QString zero =
        "The standards check is complete.\nProblems found: 0\nFixed automatically: 0\n"
        "Fixed manually: 0\nIgnored in current check: 0";
    QCOMPARE(messages.texts, QStringList({zero, zero + " [dialog shown]"}));
    QVERIFY2(d.transcript().find("no help page for \"IDH_CHECKSTANDARDS\"") != std::string::npos,
             d.transcript().c_str());
  }

  // Fixes from two files, the second preferred: its row has the icon, is chosen and previewed,
  // and the rows go by file name whatever its case. The view lights the layer's entities.
  // Closing half way asks: Cancel keeps the problem, OK resets the check.
  void preferredFileLayerProblemAndClosingHalfWay() {
    const fs::path renamed = dir.path() / "Site-Standards.dws";
    fs::rename(site, renamed);
    Desktop d(config);
    std::vector<std::pair<unsigned, bool>> lit;  // (how many, zoom) per call
    d.front.setHighlightHandler([&](HostDocument* doc, const OdDbObjectIdArray& ids, bool zoom) {
      lit.emplace_back(ids.length(), zoom);
      return d.window->viewOf(doc)->highlightObjects(ids, zoom);
    });
    st::StManager* manager = openPlan(d);
    QVERIFY(manager);
    // The site file first, so that the plug-in's own order is not the one shown.
    QVERIFY(manager->setStandardsFiles(d.app->currentDatabase(), {od(renamed), od(office)}));
    stSettingsStorage()->setPreferredFile(od(renamed));
    d.window->setGeometry(0, 0, 900, 700);
    fs::create_directories("/tmp/staudit-qt-shots");
    check(d, [&](Dialog* dialog) {
      QVERIFY(nextUntil(dialog, "Furniture"));
      QTreeWidget* list = dialog->fixList();
      QCOMPARE(list->headerItem()->text(1), QString("Standards file"));
      const QStringList files = column(list, 1);
      QCOMPARE(files.first(), QString("office-standards.dws"));
      QCOMPARE(files.last(), QString("Site-Standards.dws"));
      QTreeWidgetItem* chosen = list->currentItem();
      QVERIFY(chosen && chosen->isSelected());
      QCOMPARE(list->indexOfTopLevelItem(chosen), dialog->rows().recommendedRow());
      QCOMPARE(chosen->text(1), QString("Site-Standards.dws"));
      QVERIFY(files.lastIndexOf("office-standards.dws") < files.indexOf("Site-Standards.dws"));
      const QImage icon = stui::stIcon(111).pixmap(16).toImage();
      QCOMPARE(chosen->icon(0).pixmap(16).toImage(), icon);
      QVERIFY(list->topLevelItem(0)->icon(0).pixmap(16).toImage() != icon);
      QVERIFY(dialog->previewList()->topLevelItemCount() > 0);
      QVERIFY(dialog->fixButton()->isEnabled());

      // The view lights the layer's users; Zoom to zooms there and keeps the dialog.
      OdDbDatabase* db = d.app->currentDatabase();
      const OdDbObjectId layer = st::getRecord(db->getLayerTableId(), L"Furniture");
      QVERIFY(!lit.empty() && lit.back() == std::pair(stui::stObjectUsers(layer).length(), false));
      QVERIFY(lit.back().first > 0);
      QTest::mouseClick(dialog->zoomButton(), Qt::LeftButton);
      QVERIFY(lit.back().second && dialog->isVisible());
      dialog->grab().save("/tmp/staudit-qt-shots/check-standards-layer.png");

      const QString problem = dialog->problemBox()->toPlainText();
      clickWhenShows("Checking Not Finished.", "Cancel");
      QTest::keyClick(dialog, Qt::Key_Escape);
      QVERIFY(dialog->isVisible() && !manager->isCheckComplete());
      QCOMPARE(dialog->problemBox()->toPlainText(), problem);
      clickWhenShows("Checking Not Finished.", "OK");
      QTest::mouseClick(dialog->closeButton(), Qt::LeftButton);
      QVERIFY(!dialog->isVisible());
      QCOMPARE(dialog->result(), Dialog::kClosed);
    });
    QCOMPARE(lit.back(), std::pair(0u, false));  // the light is off again
  }

  // A whole session: every problem with a recommended fix fixed, a text style ignored (the
  // mark written, erased and written again), the sketch layer ignored earlier shown with the
  // box checked and alice's name, then SAVE; an independent reader finds the mark, and stcheck
  // reports only what is left, the ignored ones only when asked.
  void wholeSessionThenStcheckReportsWhatIsLeft() {
    const OdString login = st::getLogin();
    {
      Desktop d(config);
      QVERIFY(openPlan(d));
      stSettingsStorage()->setShowIgnoredProblems(true);
      const OdDbObjectId style =
          st::getRecord(d.app->currentDatabase()->getTextStyleTableId(), L"Notes-Arial");
      CompletionMessages messages;
      check(d, [&](Dialog* dialog) {
        QStringList seen;
        while (dialog->fixList()->isEnabled() && seen.size() < 20) {
          const QString problem = dialog->problemBox()->toPlainText();
          seen << problem.section('"', 1, 1);
          if (seen.back() == "A-WALL")  // the standard values are the fix's
            QCOMPARE(column(dialog->previewList(), 0).join('|') + " " +
                         column(dialog->previewList(), 1).join('|') + " " +
                         column(dialog->previewList(), 2).join('|'),
                     QString("Color red white"));
          if (dialog->rows().recommendedRow() >= 0) {
            QVERIFY(dialog->fixButton()->isEnabled());
            QTest::mouseClick(dialog->fixButton(), Qt::LeftButton);
            continue;
          }
          QCheckBox* box = dialog->ignoreBox();
          if (seen.back() == "Ébauche") {
            QVERIFY(box->isChecked());
            QCOMPARE(dialog->statusLine()->text(), QString("Ignored by: alice"));
          } else if (seen.back() == "Notes-Arial") {
            QVERIFY(!box->isChecked());
            const QString by = "Ignored by: " + toQString(login);
            QTest::mouseClick(box, Qt::LeftButton);
            QCOMPARE(dialog->statusLine()->text(), by);
            QVERIFY(st::hasObjectIgnoredMark(style));
            QTest::mouseClick(box, Qt::LeftButton);
            QVERIFY(dialog->statusLine()->text().isEmpty());
            QVERIFY(!st::hasObjectIgnoredMark(style));
            QTest::mouseClick(box, Qt::LeftButton);
            QCOMPARE(dialog->statusLine()->text(), by);
          }
          QTest::mouseClick(dialog->nextButton(), Qt::LeftButton);
        }
        QCOMPARE(dialog->problemBox()->toPlainText(), QString("Choose Next to check this drawing"));
        QCOMPARE(seen.join(' '), QString("Office-Dim My-Dims A-WALL Furniture A-ANNO-TEXT Ébauche "
                                         "HIDDEN Dashdot2 Office-Notes Notes-Arial"));
        // Next starts again from the first plug-in, with what is left.
        QTest::mouseClick(dialog->nextButton(), Qt::LeftButton);
        QVERIFY(dialog->problemBox()->toPlainText().contains("\"My-Dims\""));
        clickWhenShows("Checking Not Finished.", "OK");
        QTest::mouseClick(dialog->closeButton(), Qt::LeftButton);
      });
      QCOMPARE(messages.texts, QStringList({"The standards check is complete.\nProblems found: 10\n"
                                            "Fixed automatically: 0\nFixed manually: 5\n"
                                            "Ignored in current check: 2 [dialog shown]"}));
      d.type("SAVE");
    }
    auto mark = testsupport::ezdxf(
        "doc = ezdxf.readfile(path)\n"
        "x = doc.styles.get('Notes-Arial').get_extension_dict()['AcStStandard']['AcStFlags']\n"
        "print([t.value for t in x.tags if t.code == 300])\n",
        plan);
    QCOMPARE(QString::fromStdString(mark.output).trimmed(), "['" + toQString(login) + "']");
    const fs::path fresh = dir.path() / "stcheck.json";
    auto left = testsupport::runStcheckIn(dir.path(), fresh, {"check", "floor-plan.dxf"});
    auto all =
        testsupport::runStcheckIn(dir.path(), fresh, {"check", "floor-plan.dxf", "--show-ignored"});
    QCOMPARE(problemsOf(left.output),
             QStringList({"problem My-Dims", "problem Furniture", "problem Dashdot2"}));
    QCOMPARE(problemsOf(all.output),
             QStringList({"problem My-Dims", "problem Furniture", "ignored by alice Ébauche",
                          "problem Dashdot2", "ignored by " + toQString(login) + " Notes-Arial"}));
  }
};

QTEST_MAIN(CheckStandardsDialogTest)
#include "CheckStandardsDialogTest.moc"

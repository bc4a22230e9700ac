#pragma once

#include <QIcon>
#include <QString>
#include <map>
#include <vector>

#include "OdDbObjectId.h"
#include "OdString.h"
#include "StErrorAccumulatorImpl.h"
#include "hostUiDialog.h"

class OdDbDatabase;
class QPushButton;
class QTreeWidget;

namespace st {
class StManager;
}  // namespace st

namespace stui {

// The "Standard Errors found" report of a silent check: the errors left unfixed (the last
// reported first) and those fixed automatically, each with its plug-in's icon. "Fix errors"
// ends it with kFixErrors, Cancel (labelled "Close" when nothing is left to fix) with kClose;
// so do Escape and the close box.
//
// Selecting a row of either list highlights, in the host's view of the drawing, the entities
// that use the object at fault (stObjectUsers); "Zoom to" also brings them into view, and the
// dialog stays open. Whatever the dialog highlighted is cleared when it ends. A host without a
// view of the drawing shows nothing, and the dialog carries on as if it had.
//
// Controls carry object names (unfixedList, fixedList, zoomTo, fixErrors, cancel) for scripts
// and tests. Each row keeps its error's place in errors() or fixedErrors() under Qt::UserRole
// of its first column.
class StUiErrorReportDlg : public hostUiDialog {
  Q_OBJECT

 public:
  static constexpr int kFixErrors = 0;
  static constexpr int kClose = 1;

  // `manager` (not owned; may be null) gives the plug-ins' icons; `found` is copied, with a
  // reference to each error, fix and plug-in. `parent` null puts the dialog over the host's
  // main window.
  StUiErrorReportDlg(st::StManager* manager, const st::StErrorAccumulatorImpl& found,
                     QWidget* parent = nullptr);
  ~StUiErrorReportDlg() override;

  // What the dialog reports, as copied.
  const std::vector<st::StErrorAccumulatorImpl::Entry>& errors() const { return errors_; }
  const std::vector<st::StErrorAccumulatorImpl::Entry>& fixedErrors() const { return fixed_; }

  // The controls, for tests; owned by the dialog.
  QTreeWidget* unfixedList() const { return unfixedList_; }
  QTreeWidget* fixedList() const { return fixedList_; }
  QPushButton* zoomButton() const { return zoom_; }
  QPushButton* fixButton() const { return fix_; }
  QPushButton* closeButton() const { return close_; }

 public slots:
  // Clears the highlight, then ends the dialog with `code`.
  void done(int code) override;
  // Escape and the close box: the dialog ends as by Cancel, with kClose.
  void reject() override;

 private:
  void build();
  void fill();
  void fitColumns();
  // The icon of the plug-in called `name`, made from its image the first time it is asked
  // for; `plugin` (may be null) gives the image when the manager did not.
  QIcon iconOf(const OdString& name, st::StDWSPlugin* plugin);
  void addIcon(st::StDWSPlugin* plugin);
  // The selection of `list` changed: the other list lets go of its own, and the selected
  // error's object is highlighted.
  void selectionChanged(QTreeWidget* list);
  void highlight(bool zoom);

  std::vector<st::StErrorAccumulatorImpl::Entry> errors_;
  std::vector<st::StErrorAccumulatorImpl::Entry> fixed_;
  std::map<OdString, QIcon> icons_;
  QTreeWidget* unfixedList_ = nullptr;
  QTreeWidget* fixedList_ = nullptr;
  QPushButton* zoom_ = nullptr;
  QPushButton* fix_ = nullptr;
  QPushButton* close_ = nullptr;
  // The entities of the selected error's object, and the drawing they are in.
  OdDbObjectIdArray users_;
  OdDbDatabase* usersDb_ = nullptr;
  // The drawing whose view this dialog last lit, to be cleared at the end; null when nothing
  // is lit.
  OdDbDatabase* litDb_ = nullptr;
};

}  // namespace stui

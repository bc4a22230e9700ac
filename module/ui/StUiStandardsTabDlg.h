#pragma once

#include <QWidget>

#include "OdString.h"
#include "StUiStandardsList.h"

class OdDbDatabase;
class QListWidget;
class QPushButton;
class QTextEdit;

namespace stui {

class IStUiConfigureStandardsDlg;

// The "Standards" page of the Configure Standards dialog: the ordered list of standards files
// associated with a drawing, with "+" (pick a file), "-", "Up", "Down", a drop of files on the
// list (as "+"), "Locate..." for a file that is not where the list says, and the description
// of the selected file. The list is read from the drawing when the page is built and written
// only by apply(); what the buttons do to the list is StUiStandardsList's.
//
// A row shows, and describes, the file where a check looks for it (a relative path from the
// drawing's folder); the path is kept as stored. A file is refused, with one message and the list
// unchanged, when another listed file has its name (message 105) or when it cannot be read as a
// drawing (the reader's reason).
class StUiStandardsTabDlg : public QWidget {
  Q_OBJECT

 public:
  // `db` (not owned, may be null: the page stays empty) is the drawing whose association is
  // edited; `owner` (not owned) hears of every change.
  StUiStandardsTabDlg(OdDbDatabase* db, IStUiConfigureStandardsDlg* owner,
                      QWidget* parent = nullptr);
  ~StUiStandardsTabDlg() override;

  // Writes the list into the drawing in row order: through the drawing's manager when it has
  // one (which is dropped when the list is empty), otherwise into the drawing directly and a
  // manager attached; with neither a manager nor a file nothing is written. Then restarts the
  // check of the manager, if any. Always succeeds.
  bool apply();

  const StUiStandardsList& files() const { return files_; }

  // Adds `path` as "+" does once a file is chosen; false when it was refused.
  bool addFile(const OdString& path);
  // Puts `path` in place of the file of `row`, keeping its position; false when refused.
  bool locateFile(int row, const OdString& path);
  // Asks for the new place of the file of `row` and puts it there ("Locate...").
  void locate(int row);

  // The controls, for tests; owned by the page.
  QListWidget* fileList() const { return list_; }
  QTextEdit* description() const { return description_; }
  QPushButton* addButton() const { return add_; }
  QPushButton* removeButton() const { return remove_; }
  QPushButton* upButton() const { return up_; }
  QPushButton* downButton() const { return down_; }
  QPushButton* locateButton() const { return locate_; }

 private:
  void build();
  void fill();
  // Rebuilds the rows from files_, selecting `row`.
  void showRows(int row);
  void selectionChanged();
  void describe(int row);
  // Where the file of `row` is found, as a check finds it: a relative path from the drawing's
  // folder or the host's support folders.
  OdString placeOf(int row) const;
  void onAdd();
  void onRemove();
  void onMove(bool up);
  // True when `path` reads as a drawing; otherwise tells the user why and answers false.
  bool readable(const OdString& path);
  bool accepted(const OdString& path, int except);
  bool eventFilter(QObject* watched, QEvent* event) override;

  OdDbDatabase* db_;
  IStUiConfigureStandardsDlg* owner_;
  StUiStandardsList files_;
  QListWidget* list_ = nullptr;
  QTextEdit* description_ = nullptr;
  QPushButton* add_ = nullptr;
  QPushButton* remove_ = nullptr;
  QPushButton* up_ = nullptr;
  QPushButton* down_ = nullptr;
  QPushButton* locate_ = nullptr;
};

}  // namespace stui

#pragma once

#include <QWidget>
#include <vector>

#include "StDWSPlugin.h"

class QListWidget;
class QTextEdit;

namespace stui {

class IStUiConfigureStandardsDlg;

// The "Plugins" page of the Configure Standards dialog: every registered standards plug-in
// that can be created, in the registry's order, with its icon, its display name and a check
// box saying whether it is used in a check, and the description of the selected one. A
// registered class that cannot be created is told once on the command line (text 135) and
// left out. The page holds a reference to every plug-in it shows until it goes.
class StUiPluginsTabDlg : public QWidget {
  Q_OBJECT

 public:
  // `owner` (not owned) hears of every change of a check box or of the selection.
  explicit StUiPluginsTabDlg(IStUiConfigureStandardsDlg* owner, QWidget* parent = nullptr);
  ~StUiPluginsTabDlg() override;

  // Writes the check boxes into the registry and into `manager` (may be null): a checked
  // plug-in is put in use and registered with the manager, an unchecked one taken out.
  // With no box checked shows message 106 and writes nothing: false.
  bool apply(st::StManager* manager);

  int checkedCount() const;
  // The plug-in of `row`; null for a row not in the list.
  st::StDWSPlugin* pluginAt(int row) const;

  // The controls, for tests; owned by the page.
  QListWidget* pluginList() const { return list_; }
  QTextEdit* description() const { return description_; }

 private:
  void build();
  void fill();
  void describe(int row);

  IStUiConfigureStandardsDlg* owner_;
  std::vector<st::StDWSPluginPtr> plugins_;
  QListWidget* list_ = nullptr;
  QTextEdit* description_ = nullptr;
};

}  // namespace stui

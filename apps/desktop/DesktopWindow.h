#pragma once

#include <QMainWindow>
#include <QPointer>
#include <QStringList>

#include "HostApDocManagerReactor.h"
#include "HostEdInputContextReactor.h"
#include "RecentFiles.h"

class HostApplication;
class HostDrawingView;
class HostQtCommandLine;
class HostQtFront;
class QAction;
class QComboBox;
class QDockWidget;
class QLabel;
class QMenu;
class QMimeData;
class QTabWidget;

// The main window of the desktop host: one tab per open document, each a drawing view of its
// model space (the current tab is the host's current document), the File, Standards and View
// menus, a toolbar with the layer of the selection, the layers panel docked at the right, the
// command line docked at the bottom and the status bar (the cursor's drawing coordinates, the
// view's messages, and what modules place there).
//
// Every menu item sends a command through the host's command line, so a menu, a typed command
// and a script take one path. The window follows the document manager (a document opened,
// made current, renamed or closed by any command) and refreshes titles after each command.
// Window geometry, the view's background and the recent files are kept in the host's
// configuration tree.
//
// Closing the window asks about every changed drawing (Save, Don't save, Cancel); Cancel keeps
// the window open. A script's QUIT closes it without asking (see QuitCommand).
class DesktopWindow : public QMainWindow,
                      public HostApDocManagerReactor,
                      public HostEdInputContextReactor {
  Q_OBJECT

 public:
  // `app` and `front` are not owned and must outlive the window; the window sets itself up as
  // the front's main window, command line and status bar.
  DesktopWindow(HostApplication& app, HostQtFront& front, QWidget* parent = nullptr);
  ~DesktopWindow() override;

  // The window of the running desktop host, or null.
  static DesktopWindow* instance();

  HostQtCommandLine* commandLine() const { return commandLine_; }
  QTabWidget* tabs() const { return tabs_; }
  // The drawing view of a document, or null.
  HostDrawingView* viewOf(const HostDocument* doc) const;
  // The toolbar's list of the current drawing's layers: the selection's layer, blank when the
  // selection is on several, the current layer greyed when nothing is selected. Choosing one
  // moves the selection there (CHANGE LAYER), or makes it current when nothing is selected.
  QComboBox* layerList() const { return layerList_; }
  // The dock of the layers panel (LayersPanel), titled "Layers".
  QDockWidget* layersDock() const { return layersDock_; }
  // The permanent status-bar label with the cursor's drawing coordinates.
  QLabel* coordinates() const { return coordinates_; }

  // Sends command-line text as a menu does (a trailing blank ends it).
  void send(const QString& text);
  // Sends a command whose last word is a path, quoted for the command line; a path that
  // cannot be quoted (it holds a double quote) is refused with a message.
  void sendWithPath(const QString& command, const QString& path);

  // Opens the local files among dropped data (what a drop on the window does); false when it
  // holds none.
  bool openDropped(const QMimeData& dropped);

  // Asks about each changed drawing whether to save it; false when the person cancels (or a
  // save fails), true when every drawing may go.
  bool askToSaveAll();
  // Ends the program without asking, whatever is unsaved (a script's QUIT).
  void quitWithoutAsking();

  // HostApDocManagerReactor
  void onDocumentCreated(HostDocument* doc) override;
  void onDocumentCreateCanceled(HostDocument* doc, const OdString& reason) override;
  void onDocumentBecameCurrent(HostDocument* doc) override;
  void onDocumentClosing(HostDocument* doc) override;
  void onDocumentSaved(HostDocument* doc) override;
  void onDocumentRenamed(HostDocument* doc, const OdString& oldFileName) override;
  void onNoDocumentCurrent() override;
  // HostEdInputContextReactor
  void afterCommand(const OdString& commandName) override;

 protected:
  void closeEvent(QCloseEvent* event) override;
  // Typing while the drawing view has the focus goes to the command line.
  void keyPressEvent(QKeyEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;

 private:
  void buildMenus();
  void buildToolBar();
  QDockWidget* createLayersDock();
  void updateLayerList();
  void chooseLayer(int index);
  void setDarkBackground(bool dark);
  void fillRecentMenu();
  void updateTitles();
  void updateActions();
  void restoreLayout();
  void saveLayout();
  void openFiles();
  void saveAs();
  void importDrawing();
  void plot();
  void saveCurrent();
  QString startFolder() const;

  HostApplication& app_;
  HostQtFront& front_;
  RecentFiles recent_;
  QTabWidget* tabs_;
  QDockWidget* commandDock_;
  HostQtCommandLine* commandLine_;
  QDockWidget* layersDock_ = nullptr;
  QComboBox* layerList_ = nullptr;
  QLabel* coordinates_ = nullptr;
  QAction* darkAction_ = nullptr;
  bool dark_ = true;
  QMenu* recentMenu_ = nullptr;
  QList<QAction*> documentActions_;
  struct CommandAction {
    QAction* action;
    const wchar_t* command;
  };
  QList<CommandAction> moduleActions_;
  bool syncingTabs_ = false;
  bool quitting_ = false;
};

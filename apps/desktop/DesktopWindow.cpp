#include "DesktopWindow.h"

#include <QApplication>
#include <QCloseEvent>
#include <QComboBox>
#include <QDir>
#include <QDockWidget>
#include <QFileDialog>
#include <QFileInfo>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QMimeData>
#include <QStatusBar>
#include <QTabBar>
#include <QTabWidget>
#include <QToolBar>
#include <QUrl>
#include <cstdio>

#include "HostApplication.h"
#include "HostCloseQuestion.h"
#include "HostConfigTree.h"
#include "HostDocument.h"
#include "HostDocumentSave.h"
#include "HostDrawingView.h"
#include "HostQtCommandLine.h"
#include "HostQtFront.h"
#include "HostQtText.h"
#include "HostSilentCheck.h"
#include "LayersDock.h"
#include "OdDbEntity.h"
#include "OdDbSymbolTable.h"

namespace {
DesktopWindow* g_window = nullptr;

const char* const kLayoutKey = "Desktop";
const char* const kGeometry = "WindowGeometry";
const char* const kState = "WindowState";
const char* const kDarkBackground = "DarkBackground";

const char* const kDrawingFilter = "Drawings (*.dxf *.dws);;All files (*)";
}  // namespace

DesktopWindow::DesktopWindow(HostApplication& app, HostQtFront& front, QWidget* parent)
    : QMainWindow(parent),
      app_(app),
      front_(front),
      recent_(app.configTree()),
      tabs_(new QTabWidget(this)),
      commandDock_(new QDockWidget(tr("Command Line"), this)),
      commandLine_(new HostQtCommandLine(&app.commands(), commandDock_)) {
  g_window = this;
  setObjectName("DesktopWindow");
  setWindowTitle("stdesk");
  setAcceptDrops(true);

  tabs_->setDocumentMode(true);
  tabs_->setTabsClosable(true);
  tabs_->setMovable(true);
  setCentralWidget(tabs_);
  connect(tabs_, &QTabWidget::currentChanged, this, [this](int index) {
    if (syncingTabs_) return;
    if (auto* page = qobject_cast<HostDrawingView*>(tabs_->widget(index)))
      app_.documents().setCurDocument(page->document());
    updateTitles();
  });
  connect(tabs_, &QTabWidget::tabCloseRequested, this, [this](int index) {
    auto* page = qobject_cast<HostDrawingView*>(tabs_->widget(index));
    if (!page) return;
    app_.documents().setCurDocument(page->document());
    send("CLOSE");
  });

  commandDock_->setObjectName("CommandLineDock");
  commandDock_->setWidget(commandLine_);
  commandDock_->setFeatures(QDockWidget::DockWidgetMovable | QDockWidget::DockWidgetFloatable |
                            QDockWidget::DockWidgetClosable);
  addDockWidget(Qt::BottomDockWidgetArea, commandDock_);
  // A few lines of history, as a drafter expects: the drawing gets the room.
  resizeDocks({commandDock_}, {150}, Qt::Vertical);

  front_.setMainWindow(this);
  front_.setCommandLine(commandLine_);
  front_.setStatusBar(statusBar());
  front_.setZoomExtentsHandler([this](HostDocument* doc) {
    HostDrawingView* view = viewOf(doc);
    if (view) view->zoomExtents();
    return view != nullptr;
  });
  front_.setHighlightHandler([this](HostDocument* doc, const OdDbObjectIdArray& ids, bool zoom) {
    HostDrawingView* view = viewOf(doc);
    return view && view->highlightObjects(ids, zoom);
  });
  // A plot shows what the drawing's view shows.
  front_.setPlotAreaHandler([this](const OdDbDatabase& db) -> std::optional<HostQtFront::PlotView> {
    for (int i = 0; i < tabs_->count(); ++i)
      if (auto* view = qobject_cast<HostDrawingView*>(tabs_->widget(i));
          view && view->document() && view->document()->database() == &db)
        return HostQtFront::PlotView{&view->scene(), view->transform().visible()};
    return std::nullopt;
  });
  coordinates_ = new QLabel(this);
  coordinates_->setObjectName("Coordinates");
  coordinates_->setMinimumWidth(
      coordinates_->fontMetrics().horizontalAdvance("-0000000.0000, -0000000.0000"));
  statusBar()->addPermanentWidget(coordinates_);
  statusBar()->showMessage(tr("Ready"));

  layersDock_ = createLayersDock();
  buildMenus();
  buildToolBar();
  app_.documents().addReactor(this);
  app_.addInputContextReactor(this);
  restoreLayout();
  // As in any CAD program, typing goes to the command line.
  commandLine_->input()->setFocus();
  updateTitles();
  updateActions();
  updateLayerList();
}

DesktopWindow::~DesktopWindow() {
  app_.documents().removeReactor(this);
  app_.removeInputContextReactor(this);
  front_.setZoomExtentsHandler(nullptr);
  front_.setHighlightHandler(nullptr);
  front_.setPlotAreaHandler(nullptr);
  front_.setCommandLine(nullptr);
  front_.setMainWindow(nullptr);
  if (g_window == this) g_window = nullptr;
}

DesktopWindow* DesktopWindow::instance() {
  return g_window;
}

HostDrawingView* DesktopWindow::viewOf(const HostDocument* doc) const {
  for (int i = 0; i < tabs_->count(); ++i)
    if (auto* view = qobject_cast<HostDrawingView*>(tabs_->widget(i));
        view && view->document() == doc)
      return view;
  return nullptr;
}

void DesktopWindow::send(const QString& text) {
  app_.sendCommand(toOdString(text + ' '));
}

void DesktopWindow::sendWithPath(const QString& command, const QString& path) {
  if (path.contains('"')) {
    app_.messageBox(
        toOdString(
            tr("The path %1 holds a double quote, which the command line cannot take.").arg(path)),
        toOdString(command), HostButtons::kOk, HostIcon::kWarning);
    return;
  }
  send(command + " \"" + QDir::toNativeSeparators(path) + "\"");
}

void DesktopWindow::buildMenus() {
  QMenu* file = menuBar()->addMenu(tr("&File"));
  file->addAction(tr("&New"), QKeySequence::New, this, [this] { send("NEW"); });
  file->addAction(tr("&Open..."), QKeySequence::Open, this, &DesktopWindow::openFiles);
  recentMenu_ = file->addMenu(tr("Open &Recent"));
  connect(recentMenu_, &QMenu::aboutToShow, this, &DesktopWindow::fillRecentMenu);
  file->addSeparator();
  documentActions_ << file->addAction(tr("&Save"), QKeySequence::Save, this,
                                      &DesktopWindow::saveCurrent);
  documentActions_ << file->addAction(tr("Save &As..."), QKeySequence::SaveAs, this,
                                      &DesktopWindow::saveAs);
  file->addSeparator();
  documentActions_ << file->addAction(tr("&Import..."), this, &DesktopWindow::importDrawing);
  documentActions_ << file->addAction(tr("&Plot to PDF..."), QKeySequence::Print, this,
                                      &DesktopWindow::plot);
  file->addSeparator();
  documentActions_ << file->addAction(tr("&Close"), QKeySequence::Close, this,
                                      [this] { send("CLOSE"); });
  file->addAction(tr("E&xit"), QKeySequence::Quit, this, &QWidget::close);

  QMenu* standards = menuBar()->addMenu(tr("&Standards"));
  moduleActions_ << CommandAction{
      standards->addAction(tr("&Configure Standards..."), this, [this] { send("STANDARDS"); }),
      L"STANDARDS"};
  moduleActions_ << CommandAction{
      standards->addAction(tr("C&heck Standards..."), this, [this] { send("CHECKSTANDARDS"); }),
      L"CHECKSTANDARDS"};
  moduleActions_ << CommandAction{standards->addAction(tr("Standards &Settings..."), this,
                                                       [this] { send("STANDARDSSETTINGS"); }),
                                  L"STANDARDSSETTINGS"};
  connect(standards, &QMenu::aboutToShow, this, &DesktopWindow::updateActions);

  QMenu* view = menuBar()->addMenu(tr("&View"));
  documentActions_ << view->addAction(tr("Zoom &Extents"), this, [this] { send("ZOOM E"); });
  darkAction_ = view->addAction(tr("&Dark Background"), this, &DesktopWindow::setDarkBackground);
  darkAction_->setCheckable(true);
  view->addSeparator();
  view->addAction(layersDock_->toggleViewAction());
  view->addAction(commandDock_->toggleViewAction());
}

void DesktopWindow::buildToolBar() {
  QToolBar* bar = addToolBar(tr("Layers"));
  bar->setObjectName("LayersToolBar");
  bar->addWidget(new QLabel(tr("Layer "), bar));
  layerList_ = new QComboBox(bar);
  layerList_->setObjectName("LayerList");
  layerList_->setToolTip(tr("The layer of the selected entities; choose one to move them there"));
  layerList_->setMinimumContentsLength(16);
  layerList_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  bar->addWidget(layerList_);
  connect(layerList_, &QComboBox::activated, this, &DesktopWindow::chooseLayer);
}

QDockWidget* DesktopWindow::createLayersDock() {
  QDockWidget* dock = makeLayersDock(app_, this);
  dock->setFeatures(QDockWidget::DockWidgetMovable | QDockWidget::DockWidgetFloatable |
                    QDockWidget::DockWidgetClosable);
  addDockWidget(Qt::RightDockWidgetArea, dock);
  // Wide enough for the layer names beside their properties; the drawing keeps the most room.
  resizeDocks({dock}, {480}, Qt::Horizontal);
  return dock;
}

void DesktopWindow::updateLayerList() {
  const QSignalBlocker quiet(layerList_);
  layerList_->clear();
  layerList_->setPlaceholderText(QString());
  HostDocument* doc = app_.documents().curDocument();
  OdDbDatabase* db = doc ? doc->database() : nullptr;
  layerList_->setEnabled(db != nullptr);
  if (!db) return;
  OdDbSymbolTablePtr layers = db->getLayerTableId().safeOpenObject();
  for (OdDbSymbolTableIteratorPtr it = layers->newIterator(); !it->done(); it->step())
    layerList_->addItem(toQString(it->getRecord()->getName()));
  // The selection's one layer; none shown when it is on several.
  std::optional<OdString> common;
  bool mixed = false;
  for (const OdDbObjectId& id : doc->selection()) {
    OdDbEntityPtr entity = OdDbEntity::cast(id.openObject().get());
    if (entity.isNull() || id.database() != db) continue;
    const OdString layer = entity->layer();
    if (common && common->iCompare(layer) != 0) mixed = true;
    common = layer;
  }
  if (common && !mixed) {
    layerList_->setCurrentIndex(layerList_->findText(toQString(*common), Qt::MatchFixedString));
    return;
  }
  layerList_->setCurrentIndex(-1);
  if (!common) {
    // Nothing selected: what new entities would go on, greyed.
    OdResBufPtr current = db->getHeaderVariable(L"$CLAYER");
    layerList_->setPlaceholderText(current ? toQString(current->getString()) : QStringLiteral("0"));
  }
}

void DesktopWindow::chooseLayer(int index) {
  HostDocument* doc = app_.documents().curDocument();
  if (!doc || index < 0) return;
  const QString name = layerList_->itemText(index);
  // Quoted: a layer name may hold blanks (never a double quote).
  bool selected = false;
  for (const OdDbObjectId& id : doc->selection()) selected = selected || !id.isErased();
  send((selected ? "CHANGE LAYER \"" : "-LAYER SET \"") + name + "\"");
}

void DesktopWindow::setDarkBackground(bool dark) {
  dark_ = dark;
  if (darkAction_->isChecked() != dark) darkAction_->setChecked(dark);
  for (int i = 0; i < tabs_->count(); ++i)
    if (auto* view = qobject_cast<HostDrawingView*>(tabs_->widget(i)))
      view->setDarkBackground(dark);
  HostConfigTree& tree = app_.configTree();
  tree.createKey({}, kLayoutKey);
  tree.setValue({kLayoutKey}, kDarkBackground, OdVariant(dark));
}

void DesktopWindow::fillRecentMenu() {
  recentMenu_->clear();
  const QStringList files = recent_.files();
  for (int i = 0; i < files.size(); ++i) {
    const QString path = files[i];
    QString label = QString("&%1 %2").arg((i + 1) % 10).arg(QFileInfo(path).fileName());
    QAction* action = recentMenu_->addAction(label, this, [this, path] {
      if (!QFileInfo::exists(path)) {
        recent_.remove(path);
        app_.cmdPrintf(L"%ls is gone; it was taken off the recent files\n",
                       toOdString(path).c_str());
        return;
      }
      sendWithPath("OPEN", path);
    });
    action->setToolTip(path);
  }
  if (files.isEmpty()) recentMenu_->addAction(tr("(none)"))->setEnabled(false);
}

QString DesktopWindow::startFolder() const {
  HostDocument* doc = app_.documents().curDocument();
  if (doc && !doc->isUntitled()) return QFileInfo(toQString(doc->fileName())).absolutePath();
  const QStringList files = recent_.files();
  return files.isEmpty() ? QString() : QFileInfo(files.first()).absolutePath();
}

void DesktopWindow::openFiles() {
  const QStringList paths =
      QFileDialog::getOpenFileNames(this, tr("Open Drawing"), startFolder(), tr(kDrawingFilter));
  for (const QString& path : paths) sendWithPath("OPEN", path);
}

void DesktopWindow::saveCurrent() {
  HostDocument* doc = app_.documents().curDocument();
  if (doc && doc->isUntitled())
    saveAs();
  else
    send("SAVE");
}

void DesktopWindow::saveAs() {
  HostDocument* doc = app_.documents().curDocument();
  if (!doc) return;
  const QString ascii = tr("DXF drawing (*.dxf)");
  const QString binary = tr("Binary DXF drawing (*.dxf)");
  const QString standards = tr("Drawing standards (*.dws)");
  QFileDialog dialog(this, tr("Save Drawing As"));
  dialog.setAcceptMode(QFileDialog::AcceptSave);
  dialog.setNameFilters({ascii, binary, standards});
  dialog.selectNameFilter(doc->database() && doc->database()->isBinary() ? binary : ascii);
  dialog.setDefaultSuffix("dxf");
  dialog.setDirectory(startFolder());
  dialog.selectFile(toQString(doc->title()));
  if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return;
  const QString filter = dialog.selectedNameFilter();
  sendWithPath(filter == binary ? "SAVEAS BINARY" : "SAVEAS ASCII", dialog.selectedFiles().first());
}

void DesktopWindow::importDrawing() {
  const QString path =
      QFileDialog::getOpenFileName(this, tr("Import Drawing"), startFolder(), tr(kDrawingFilter));
  if (!path.isEmpty()) sendWithPath("IMPORT", path);
}

void DesktopWindow::plot() {
  HostDocument* doc = app_.documents().curDocument();
  if (!doc) return;
  QString suggested = QFileInfo(toQString(doc->title())).completeBaseName() + ".pdf";
  if (!startFolder().isEmpty()) suggested = startFolder() + "/" + suggested;
  const QString path =
      QFileDialog::getSaveFileName(this, tr("Plot to PDF"), suggested, tr("PDF files (*.pdf)"));
  if (!path.isEmpty()) sendWithPath("PLOT", path);
}

void DesktopWindow::updateTitles() {
  HostDocument* current = app_.documents().curDocument();
  for (int i = 0; i < tabs_->count(); ++i) {
    auto* page = qobject_cast<HostDrawingView*>(tabs_->widget(i));
    if (!page || !page->document()) continue;
    HostDocument* doc = page->document();
    tabs_->setTabText(i, toQString(doc->title()) + (doc->isModified() ? "*" : ""));
    tabs_->setTabToolTip(i, toQString(doc->fileName()));
  }
  if (current) {
    setWindowTitle(toQString(current->title()) + "[*] - stdesk");
    setWindowModified(current->isModified());
  } else {
    setWindowTitle("stdesk");
    setWindowModified(false);
  }
}

void DesktopWindow::updateActions() {
  const bool hasDocument = app_.documents().curDocument() != nullptr;
  for (QAction* action : documentActions_) action->setEnabled(hasDocument);
  for (const CommandAction& item : moduleActions_)
    item.action->setEnabled(app_.commands().find(item.command) != nullptr);
}

void DesktopWindow::onDocumentCreated(HostDocument* doc) {
  auto* view = new HostDrawingView(doc, tabs_);
  view->setDarkBackground(dark_);
  connect(view, &HostDrawingView::cursorMoved, this, [this](double x, double y) {
    HostDocument* d = app_.documents().curDocument();
    const int places = d && d->database() ? d->database()->getLUPREC() : 4;
    coordinates_->setText(QString("%1, %2").arg(x, 0, 'f', places).arg(y, 0, 'f', places));
  });
  connect(view, &HostDrawingView::statusMessage, this,
          [this](const QString& text) { statusBar()->showMessage(text, 15000); });
  connect(view, &HostDrawingView::selectionEdited, this, &DesktopWindow::updateLayerList);
  syncingTabs_ = true;
  tabs_->addTab(view, toQString(doc->title()));
  syncingTabs_ = false;
  if (!doc->isUntitled()) recent_.add(toQString(doc->fileName()));
}

void DesktopWindow::onDocumentCreateCanceled(HostDocument* doc, const OdString& reason) {
  // A person who chose a file from a menu may not be looking at the command line.
  if (front_.scriptRunning()) return;
  app_.messageBox(doc->title() + L" cannot be opened:\n" + reason, L"Open", HostButtons::kOk,
                  HostIcon::kError);
}

void DesktopWindow::onDocumentBecameCurrent(HostDocument* doc) {
  if (HostDrawingView* view = viewOf(doc)) {
    syncingTabs_ = true;
    tabs_->setCurrentWidget(view);
    syncingTabs_ = false;
  }
  updateTitles();
  updateActions();
  updateLayerList();
}

void DesktopWindow::onDocumentClosing(HostDocument* doc) {
  if (HostDrawingView* view = viewOf(doc)) {
    syncingTabs_ = true;
    tabs_->removeTab(tabs_->indexOf(view));
    syncingTabs_ = false;
    // At once: the view watches the database, which goes with the document.
    delete view;
  }
}

void DesktopWindow::onDocumentSaved(HostDocument*) {
  updateTitles();
}

void DesktopWindow::onDocumentRenamed(HostDocument* doc, const OdString&) {
  recent_.add(toQString(doc->fileName()));
  updateTitles();
}

void DesktopWindow::onNoDocumentCurrent() {
  updateTitles();
  updateActions();
  updateLayerList();
}

void DesktopWindow::afterCommand(const OdString&) {
  // The views follow their drawings by themselves; a command may have changed a selection.
  for (int i = 0; i < tabs_->count(); ++i)
    if (auto* view = qobject_cast<HostDrawingView*>(tabs_->widget(i))) view->selectionChanged();
  updateTitles();
  updateActions();
  updateLayerList();
}

bool DesktopWindow::askToSaveAll() {
  for (HostDocument* doc : app_.documents().documents()) {
    if (!doc->isModified()) continue;
    app_.documents().setCurDocument(doc);
    if (!doc->isUntitled()) {
      if (!hostConfirmClose(doc)) return false;
      continue;
    }
    // A new drawing's name comes from a file dialog here, not from the command line.
    const int answer = front_.showMessageBox(
        HostMessageBox{L"Save changes to " + doc->title() + L"?", L"Close",
                       HostButtons::kYesNoCancel, HostIcon::kQuestion, kHostYes});
    if (answer == kHostCancel) return false;
    if (answer == kHostNo) continue;
    const QString path = QFileDialog::getSaveFileName(this, tr("Save Drawing As"), startFolder(),
                                                      tr("DXF drawing (*.dxf)"));
    if (path.isEmpty()) return false;
    hostRunSilentCheck(kHostCheckSave);
    if (!hostSaveDocument(doc, toOdString(path))) return false;
  }
  return true;
}

void DesktopWindow::quitWithoutAsking() {
  for (HostDocument* doc : app_.documents().documents())
    if (doc->isModified())
      std::fprintf(stderr, "stdesk: QUIT discarded the changes to %s\n",
                   doc->fileName().toUtf8().c_str());
  quitting_ = true;
  close();
}

void DesktopWindow::closeEvent(QCloseEvent* event) {
  if (!quitting_ && !askToSaveAll()) {
    event->ignore();
    return;
  }
  saveLayout();
  event->accept();
}

void DesktopWindow::keyPressEvent(QKeyEvent* event) {
  // Keys the view leaves (it keeps Escape and space) come here; printable ones are the start
  // of a command. The guard stops a key the line also leaves from coming round again.
  static bool forwarding = false;
  QLineEdit* input = commandLine_->input();
  if (forwarding || event->text().isEmpty() || !event->text().at(0).isPrint()) {
    QMainWindow::keyPressEvent(event);
    return;
  }
  forwarding = true;
  input->setFocus();
  QCoreApplication::sendEvent(input, event);
  forwarding = false;
}

void DesktopWindow::dragEnterEvent(QDragEnterEvent* event) {
  if (!event->mimeData()->hasUrls()) return;
  for (const QUrl& url : event->mimeData()->urls())
    if (url.isLocalFile()) {
      event->acceptProposedAction();
      return;
    }
}

void DesktopWindow::dropEvent(QDropEvent* event) {
  if (openDropped(*event->mimeData())) event->acceptProposedAction();
}

bool DesktopWindow::openDropped(const QMimeData& dropped) {
  bool any = false;
  for (const QUrl& url : dropped.urls())
    if (url.isLocalFile()) {
      sendWithPath("OPEN", url.toLocalFile());
      any = true;
    }
  return any;
}

void DesktopWindow::restoreLayout() {
  HostConfigTree& tree = app_.configTree();
  resize(1200, 800);
  auto geometry = tree.getValue({kLayoutKey}, kGeometry);
  if (geometry && geometry->varType() == OdVariant::kString)
    restoreGeometry(
        QByteArray::fromBase64(QByteArray::fromStdString(geometry->getString().toUtf8())));
  auto state = tree.getValue({kLayoutKey}, kState);
  if (state && state->varType() == OdVariant::kString)
    restoreState(QByteArray::fromBase64(QByteArray::fromStdString(state->getString().toUtf8())));
  auto dark = tree.getValue({kLayoutKey}, kDarkBackground);
  dark_ = !dark || dark->varType() != OdVariant::kBool || dark->getBool();
  darkAction_->setChecked(dark_);
}

void DesktopWindow::saveLayout() {
  HostConfigTree& tree = app_.configTree();
  HostConfigTree::Batch batch(tree);
  tree.createKey({}, kLayoutKey);
  tree.setValue({kLayoutKey}, kGeometry,
                OdVariant(OdString::fromUtf8(saveGeometry().toBase64().toStdString())));
  tree.setValue({kLayoutKey}, kState,
                OdVariant(OdString::fromUtf8(saveState().toBase64().toStdString())));
}

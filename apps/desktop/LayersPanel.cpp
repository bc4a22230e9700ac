#include "LayersPanel.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QIcon>
#include <QInputDialog>
#include <QPainter>
#include <QPixmap>
#include <QPushButton>
#include <QSignalBlocker>
#include <QTableWidget>
#include <QTimer>
#include <QVBoxLayout>
#include <algorithm>
#include <vector>

#include "HostApplication.h"
#include "HostCommandLine.h"
#include "HostDocument.h"
#include "HostLayerRules.h"
#include "HostQtText.h"
#include "HostViewPalette.h"
#include "OdDbDatabase.h"
#include "OdDbLayerTable.h"
#include "OdDbLayerTableRecord.h"
#include "OdDbLinetypeTable.h"

namespace {

// The stored name of the layer a row shows, as read: the name cell's text may be mid-edit.
constexpr int kNameRole = Qt::UserRole;

struct LayerRow {
  QString name;
  bool off;
  bool frozen;
  short colour;
  std::int32_t rgb;  // -1: none, the index counts
  QString linetype;
  OdDb::LineWeight lineweight;
};

std::vector<LayerRow> readLayers(const OdDbDatabase& db) {
  std::vector<LayerRow> rows;
  OdDbLayerTablePtr table = db.getLayerTableId().safeOpenObject();
  for (OdDbSymbolTableIteratorPtr it = table->newIterator(); !it->done(); it->step()) {
    OdDbLayerTableRecordPtr layer = it->getRecord();
    if (layer.isNull()) continue;
    rows.push_back({toQString(layer->getName()), layer->isOff(), layer->isFrozen(),
                    layer->colorIndex(), layer->trueColor(), toQString(layer->linetypeName()),
                    layer->lineWeight()});
  }
  std::stable_sort(rows.begin(), rows.end(), [](const LayerRow& a, const LayerRow& b) {
    return QString::compare(a.name, b.name, Qt::CaseInsensitive) < 0;
  });
  return rows;
}

QStringList readLinetypes(const OdDbDatabase& db) {
  QStringList names;
  OdDbLinetypeTablePtr table = db.getLinetypeTableId().safeOpenObject();
  for (OdDbSymbolTableIteratorPtr it = table->newIterator(); !it->done(); it->step())
    if (OdDbSymbolTableRecordPtr record = it->getRecord(); !record.isNull()) {
      const QString name = toQString(record->getName());
      // What an entity may take from its layer or block; a layer takes a real linetype.
      if (name.compare("ByLayer", Qt::CaseInsensitive) != 0 &&
          name.compare("ByBlock", Qt::CaseInsensitive) != 0)
        names << name;
    }
  return names;
}

// A square of the colour, framed so that white shows on a white table.
QIcon swatch(QRgb rgb) {
  QPixmap pixmap(14, 14);
  pixmap.fill(Qt::transparent);
  QPainter painter(&pixmap);
  painter.setPen(Qt::darkGray);
  painter.setBrush(QColor(rgb));
  painter.drawRect(1, 1, 11, 11);
  return QIcon(pixmap);
}

QString colourText(short index, std::int32_t rgb) {
  if (rgb >= 0) return QColor(QRgb(rgb)).name();
  static const char* const kNames[] = {"red",  "yellow",  "green", "cyan",
                                       "blue", "magenta", "white"};
  return index >= 1 && index <= 7 ? QString("%1 %2").arg(index).arg(kNames[index - 1])
                                  : QString::number(index);
}

QTableWidgetItem* itemAt(QTableWidget* table, int row, int column) {
  QTableWidgetItem* item = table->item(row, column);
  if (!item) {
    item = new QTableWidgetItem;
    item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
    table->setItem(row, column, item);
  }
  return item;
}

}  // namespace

LayersPanel::LayersPanel(HostApplication& app, QWidget* parent)
    : QWidget(parent),
      app_(app),
      table_(new QTableWidget(0, kColumnCount, this)),
      newButton_(new QPushButton(tr("New"), this)),
      renameButton_(new QPushButton(tr("Rename"), this)),
      deleteButton_(new QPushButton(tr("Delete"), this)),
      currentButton_(new QPushButton(tr("Set Current"), this)) {
  setObjectName("LayersPanel");
  setWindowTitle(tr("Layers"));

  table_->setHorizontalHeaderLabels({QString(), tr("Name"), tr("On"), tr("Frozen"), tr("Colour"),
                                     tr("Linetype"), tr("Lineweight")});
  table_->horizontalHeaderItem(kCurrent)->setToolTip(tr("Current layer"));
  table_->verticalHeader()->hide();
  table_->setSelectionBehavior(QAbstractItemView::SelectRows);
  table_->setSelectionMode(QAbstractItemView::SingleSelection);
  table_->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed);
  table_->setWordWrap(false);
  QHeaderView* header = table_->horizontalHeader();
  // Widths follow the contents once per reading (refresh), not on every cell change.
  header->setSectionResizeMode(QHeaderView::Interactive);
  header->setStretchLastSection(true);
  header->setMinimumSectionSize(24);

  connect(table_, &QTableWidget::cellClicked, this, &LayersPanel::cellClicked);
  connect(table_, &QTableWidget::cellChanged, this, &LayersPanel::nameEdited);
  connect(table_, &QTableWidget::itemSelectionChanged, this, &LayersPanel::updateButtons);
  connect(newButton_, &QPushButton::clicked, this, &LayersPanel::addLayer);
  connect(renameButton_, &QPushButton::clicked, this, [this] {
    if (const int row = rowOf(selectedLayer()); row >= 0)
      table_->editItem(table_->item(row, kName));
  });
  connect(deleteButton_, &QPushButton::clicked, this, [this] {
    if (const QString name = quoted(selectedLayer()); !name.isEmpty()) send("DELETE " + name);
  });
  connect(currentButton_, &QPushButton::clicked, this, [this] {
    if (const QString name = quoted(selectedLayer()); !name.isEmpty()) send("SET " + name);
  });
  newButton_->setToolTip(tr("Adds a layer and lets you name it"));
  renameButton_->setToolTip(tr("Edits the name of the selected layer"));
  currentButton_->setToolTip(tr("Makes the selected layer the one new objects go on"));

  auto* buttons = new QHBoxLayout;
  for (QPushButton* b : {newButton_, renameButton_, deleteButton_, currentButton_})
    buttons->addWidget(b);
  buttons->addStretch();
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(4, 4, 4, 4);
  layout->addLayout(buttons);
  layout->addWidget(table_);

  app_.documents().addReactor(this);
  app_.addInputContextReactor(this);
  setDocument(app_.documents().curDocument());
}

LayersPanel::~LayersPanel() {
  app_.documents().removeReactor(this);
  app_.removeInputContextReactor(this);
}

void LayersPanel::setDocument(HostDocument* doc) {
  doc_ = doc;
  editWhenShown_.clear();
  refresh();
}

void LayersPanel::refresh() {
  const QString keep = selectedLayer();
  OdDbDatabase* db = doc_ ? doc_->database() : nullptr;
  const std::vector<LayerRow> rows = db ? readLayers(*db) : std::vector<LayerRow>();
  linetypes_ = db ? readLinetypes(*db) : QStringList();
  current_ = db ? toQString(HostLayerRules::currentLayer(*db)) : QString();

  const bool keepsLineweights =
      db && db->formatRelease() >= HostLayerRules::kFirstReleaseWithLineweights;

  filling_ = true;
  const QSignalBlocker blockSelection(table_->selectionModel());
  table_->setRowCount(static_cast<int>(rows.size()));
  for (int row = 0; row < static_cast<int>(rows.size()); ++row) {
    const LayerRow& layer = rows[row];
    fillRow(row, layer.name);
    const bool isCurrent = layer.name.compare(current_, Qt::CaseInsensitive) == 0;
    QFont font = table_->font();
    font.setBold(isCurrent);
    itemAt(table_, row, kCurrent)->setText(isCurrent ? QString::fromUtf8("\u2713") : QString());
    QTableWidgetItem* name = itemAt(table_, row, kName);
    // Layer 0 keeps its name; every other name is edited in place.
    name->setFlags(layer.name == "0" ? name->flags() & ~Qt::ItemIsEditable
                                     : name->flags() | Qt::ItemIsEditable);
    name->setText(layer.name);
    name->setData(kNameRole, layer.name);
    name->setFont(font);
    itemAt(table_, row, kOn)->setText(layer.off ? tr("Off") : tr("On"));
    itemAt(table_, row, kFrozen)->setText(layer.frozen ? tr("Frozen") : tr("Thawed"));
    QTableWidgetItem* colour = itemAt(table_, row, kColour);
    colour->setText(colourText(layer.colour, layer.rgb));
    colour->setIcon(
        swatch(layer.rgb >= 0 ? QRgb(layer.rgb) : QRgb(HostViewPalette::aciToRgb(layer.colour))));
    colour->setToolTip(tr("Click to choose the colour"));

    auto* linetype = static_cast<QComboBox*>(table_->cellWidget(row, kLinetype));
    const QSignalBlocker blockLinetype(linetype);
    // A layer may name a linetype the drawing lacks; its combo lists that name too.
    QStringList choices = linetypes_;
    if (!choices.contains(layer.linetype)) choices << layer.linetype;
    if (linetype->property("choices").toStringList() != choices) {
      linetype->clear();
      linetype->addItems(choices);
      linetype->setProperty("choices", choices);
    }
    linetype->setCurrentText(layer.linetype);
    auto* weight = static_cast<QComboBox*>(table_->cellWidget(row, kLineweight));
    const QSignalBlocker blockWeight(weight);
    weight->setCurrentIndex(
        weight->findData(toQString(HostLayerRules::lineweightText(layer.lineweight))));
    weight->setEnabled(keepsLineweights);
  }
  filling_ = false;
  for (int column = 0; column < kColumnCount; ++column) table_->resizeColumnToContents(column);
  // Names get the room; a long linetype name is read in its list, not in a wide column.
  table_->setColumnWidth(kName, std::clamp(table_->columnWidth(kName), 90, 260));
  table_->setColumnWidth(kLinetype, std::min(table_->columnWidth(kLinetype), 130));

  const QString select = editWhenShown_.isEmpty() ? keep : editWhenShown_;
  const int row = rowOf(select);
  if (row >= 0)
    table_->selectRow(row);
  else
    table_->clearSelection();
  if (!editWhenShown_.isEmpty() && row >= 0) {
    editWhenShown_.clear();
    table_->scrollToItem(table_->item(row, kName));
    table_->editItem(table_->item(row, kName));
  }
  updateButtons();
}

void LayersPanel::fillRow(int row, const QString& name) {
  // The combos stay from one reading to the next; each knows its layer by the row's name.
  if (!table_->cellWidget(row, kLinetype)) {
    auto* linetype = new QComboBox;
    linetype->setFrame(false);
    linetype->setToolTip(tr("The linetype of the layer"));
    connect(linetype, &QComboBox::activated, this, [this, linetype](int) {
      const QString layer = quoted(linetype->property("layer").toString());
      const QString type = quoted(linetype->currentText());
      if (!layer.isEmpty() && !type.isEmpty()) send("LTYPE " + type + " " + layer);
    });
    table_->setCellWidget(row, kLinetype, linetype);
  }
  if (!table_->cellWidget(row, kLineweight)) {
    auto* weight = new QComboBox;
    weight->setFrame(false);
    weight->setToolTip(tr("The lineweight of the layer, in millimetres"));
    weight->addItem(tr("Default"), QString("Default"));
    for (OdDb::LineWeight w : HostLayerRules::lineweights()) {
      const QString text = toQString(HostLayerRules::lineweightText(w));
      weight->addItem(text + " mm", text);
    }
    connect(weight, &QComboBox::activated, this, [this, weight](int) {
      const QString layer = quoted(weight->property("layer").toString());
      if (!layer.isEmpty()) send("LWEIGHT " + weight->currentData().toString() + " " + layer);
    });
    table_->setCellWidget(row, kLineweight, weight);
  }
  table_->cellWidget(row, kLinetype)->setProperty("layer", name);
  table_->cellWidget(row, kLineweight)->setProperty("layer", name);
}

int LayersPanel::rowOf(const QString& name) const {
  if (name.isEmpty()) return -1;
  for (int row = 0; row < table_->rowCount(); ++row)
    if (layerAt(row).compare(name, Qt::CaseInsensitive) == 0) return row;
  return -1;
}

QString LayersPanel::layerAt(int row) const {
  const QTableWidgetItem* item = table_->item(row, kName);
  return item ? item->data(kNameRole).toString() : QString();
}

QString LayersPanel::selectedLayer() const {
  const QList<QTableWidgetSelectionRange> ranges = table_->selectedRanges();
  return ranges.isEmpty() ? QString() : layerAt(ranges.first().topRow());
}

void LayersPanel::cellClicked(int row, int column) {
  const QString name = layerAt(row);
  if (name.isEmpty()) return;
  const QTableWidgetItem* item = table_->item(row, column);
  switch (column) {
    case kCurrent:
      if (item->text().isEmpty()) {
        if (const QString q = quoted(name); !q.isEmpty()) send("SET " + q);
      }
      break;
    case kOn:
      if (const QString q = quoted(name); !q.isEmpty())
        send((item->text() == tr("Off") ? "ON " : "OFF ") + q);
      break;
    case kFrozen:
      if (const QString q = quoted(name); !q.isEmpty())
        send((item->text() == tr("Frozen") ? "THAW " : "FREEZE ") + q);
      break;
    case kColour:
      chooseColour(row);
      break;
    default:
      break;
  }
}

void LayersPanel::chooseColour(int row) {
  const QString name = layerAt(row);
  const QString q = quoted(name);
  if (q.isEmpty()) return;
  QInputDialog dialog(this);
  dialog.setWindowTitle(tr("Layer Colour"));
  dialog.setInputMode(QInputDialog::IntInput);
  dialog.setIntRange(1, 255);
  dialog.setIntValue(table_->item(row, kColour)->text().section(' ', 0, 0).toInt());
  dialog.setLabelText(tr("Colour index (1-255) of layer %1:").arg(name));
  if (dialog.exec() != QDialog::Accepted) return;
  send(QString("COLOR %1 %2").arg(dialog.intValue()).arg(q));
}

void LayersPanel::nameEdited(int row, int column) {
  if (filling_ || column != kName) return;
  const QString oldName = layerAt(row);
  const QString newName = table_->item(row, kName)->text().trimmed();
  if (newName == oldName || newName.isEmpty()) {
    QTimer::singleShot(0, this, &LayersPanel::refresh);
    return;
  }
  const QString from = quoted(oldName);
  const QString to = quoted(newName);
  if (from.isEmpty() || to.isEmpty()) {
    QTimer::singleShot(0, this, &LayersPanel::refresh);
    return;
  }
  send("RENAME " + from + " " + to);
}

void LayersPanel::addLayer() {
  OdDbDatabase* db = doc_ ? doc_->database() : nullptr;
  if (!db) return;
  OdDbLayerTablePtr layers = db->getLayerTableId().safeOpenObject();
  QString name;
  for (int n = 1;; ++n) {
    name = QString("Layer%1").arg(n);
    if (!layers->has(toOdString(name))) break;
  }
  editWhenShown_ = name;
  send("NEW " + quoted(name));
}

void LayersPanel::updateButtons() {
  const QString name = selectedLayer();
  OdDbDatabase* db = doc_ ? doc_->database() : nullptr;
  newButton_->setEnabled(db != nullptr);
  const bool selected = db && !name.isEmpty();
  renameButton_->setEnabled(selected && name != "0");
  const QTableWidgetItem* frozen = table_->item(rowOf(name), kFrozen);
  currentButton_->setEnabled(selected && name.compare(current_, Qt::CaseInsensitive) != 0 &&
                             frozen && frozen->text() != tr("Frozen"));
  if (!selected) {
    deleteButton_->setEnabled(false);
    deleteButton_->setToolTip(tr("Deletes the selected layer"));
    return;
  }
  OdDbLayerTablePtr layers = db->getLayerTableId().safeOpenObject();
  const OdString why = HostLayerRules::whyNotDeletable(*db, layers->getAt(toOdString(name)));
  deleteButton_->setEnabled(why.isEmpty());
  deleteButton_->setToolTip(why.isEmpty()
                                ? tr("Deletes layer %1").arg(name)
                                : tr("Layer %1 cannot be deleted: %2").arg(name, toQString(why)));
}

void LayersPanel::send(const QString& words) {
  // From the event loop: the command reads the table afresh, which must not happen while the
  // table is still handling the click or closing an editor.
  QTimer::singleShot(0, this, [this, doc = doc_, line = "-LAYER " + words + " "] {
    if (!doc || doc != doc_ || app_.commandLine().isRunning()) return;
    if (app_.documents().curDocument() != doc) app_.documents().setCurDocument(doc);
    app_.sendCommand(toOdString(line));
  });
}

QString LayersPanel::quoted(const QString& name) {
  if (name.contains('"')) {
    app_.cmdPrint(
        toOdString(tr("The layer name %1 holds a double quote, which the command line cannot "
                      "take.\n")
                       .arg(name)));
    return QString();
  }
  return '"' + name + '"';
}

void LayersPanel::onDocumentBecameCurrent(HostDocument* doc) {
  if (doc != doc_) setDocument(doc);
}

void LayersPanel::onDocumentClosing(HostDocument* doc) {
  if (doc == doc_) setDocument(nullptr);
}

void LayersPanel::onNoDocumentCurrent() {
  setDocument(nullptr);
}

void LayersPanel::commandWillStart(const OdString&) {
  setEnabled(false);
}

void LayersPanel::afterCommand(const OdString&) {
  // A transparent command ends within the one that started it; the panel waits for that too.
  setEnabled(!app_.commandLine().isRunning());
  refresh();
}

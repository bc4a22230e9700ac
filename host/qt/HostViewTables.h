#pragma once

#include <QString>
#include <cstdint>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "HostViewGeometry.h"
#include "HostViewTextLayout.h"
#include "OdDbObjectId.h"

class OdDbDatabase;
class OdString;
struct HostViewLayer;
struct HostViewPattern;

// The named things a drawn entity refers to: layers, linetypes, text styles and blocks, read
// from the drawing's tables, with lookups by name that ignore case as the drawing does. Layers
// and linetypes are appended to vectors the caller owns (the scene's), so that an index handed
// out stays valid while the tables are read again. Reads the database only; the database must
// outlive this. Nothing throws for a malformed record (it is read with defaults).
class HostViewTables {
 public:
  // A block definition: its record and the base point its contents are drawn from.
  struct Block {
    QString name;
    OdDbObjectId record;
    HostViewVec base;
    bool layout = false;  // model space or a paper space: never inserted
  };

  // Reads every table of `db` into `layers` and `patterns`. A name read before keeps its index;
  // new names are appended. Returns false when a layer or linetype read before is gone (indices
  // held elsewhere may then be stale: rebuild everything that holds them).
  bool read(OdDbDatabase& db, std::vector<HostViewLayer>& layers,
            std::vector<HostViewPattern>& patterns);

  // The index of the layer `name`; a name the table lacks is added as a visible layer in the
  // foreground colour (a drawing may name a layer it never defined).
  std::int32_t layer(const OdString& name, std::vector<HostViewLayer>& layers);
  std::int32_t layerZero() const { return layerZero_; }
  // HostViewLinetype::kByLayer / kByBlock / kContinuous or an index into the patterns; an
  // unknown name is continuous.
  std::int32_t linetype(const OdString& name) const;
  // The style named `name`, or the default style for an unknown one.
  const HostViewTextStyle& style(const OdString& name) const;
  // The index of the block `name` in blocks(), or -1.
  std::int32_t block(const OdString& name) const;
  const std::vector<Block>& blocks() const { return blocks_; }
  double linetypeScale() const { return linetypeScale_; }
  // The arrowhead size of leaders: $DIMASZ times $DIMSCALE.
  double arrowSize() const { return arrowSize_; }
  // A digest of the text styles and the blocks (names, base points, every tag of their
  // entities): when it changes, everything drawn from them must be read again.
  std::uint64_t blocksAndStylesDigest() const { return digest_; }

 private:
  static std::wstring key(const OdString& name);
  // Keys are folded to upper case; layerBySpelling_ caches names as entities spell them.
  std::unordered_map<std::wstring, std::int32_t> layerByName_, linetypeByName_, blockByName_;
  std::unordered_map<std::wstring, std::int32_t> layerBySpelling_;
  std::unordered_set<std::wstring> tableLayers_;  // the layer table's names at the last read
  std::unordered_map<std::wstring, HostViewTextStyle> styleByName_;
  HostViewTextStyle defaultStyle_;
  std::vector<Block> blocks_;
  std::int32_t layerZero_ = 0;
  double linetypeScale_ = 1.0;
  double arrowSize_ = 0.18;
  std::uint64_t digest_ = 0;
};

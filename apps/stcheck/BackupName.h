#pragma once

#include <filesystem>
#include <vector>

namespace stcheck {

// Where --fix keeps the original of a drawing. A CAD user expects NAME.bak beside NAME.dxf;
// but NAME.bak is shared by every drawing of that name (plan.dxf, plan.DXF, plan.dws), and by
// the drawing itself when it is called NAME.bak, so then the whole file name is kept instead
// (plan.DXF.bak): one drawing's original never takes another's place.
class BackupName {
 public:
  // The backup of `drawing` (absolute or relative, as given), looking at the drawing's folder.
  static std::filesystem::path of(const std::filesystem::path& drawing);
  // Every name the backup of `drawing` may take, whatever its folder holds.
  static std::vector<std::filesystem::path> candidates(const std::filesystem::path& drawing);
  // A name CAD users give drawings, standards files and templates (.dxf, .dwg, .dws, .dwt in
  // any case), whose backups share NAME.bak.
  static bool isDrawingName(const std::filesystem::path& name);
  // A backup's name: ".bak" in any case.
  static bool isBackupName(const std::filesystem::path& name);
};

}  // namespace stcheck

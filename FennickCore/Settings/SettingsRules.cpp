#include "FennickCore/Settings/SettingsRules.h"

#include "FennickCore/Imaging/MediaTypes.h"
#include "FennickCore/Platform/Files/PathComponent.h"
#include "FennickCore/Support/Text.h"

namespace fennick {

namespace {
bool hasControlCharacters(std::string_view text) { return withoutControls(text) != text; }
} // namespace

bool isNamePart(std::string_view text) { return !text.contains('/') && !hasControlCharacters(text); }

bool isNamePrefix(std::string_view text) { return isNamePart(text) && !text.starts_with('.'); }

bool fitsTogether(const PrefixSequenceNaming &naming) {
  return naming.prefix.size() + naming.separator.size() <= kLongestNameStart;
}

bool isReservedFolderName(std::string_view name) { return name == kOriginalsFolder || name == kExportFolder; }

bool isSessionName(std::string_view name) {
  return PathComponent::make(name) && !name.starts_with('.') && !hasControlCharacters(name) &&
         !isReservedFolderName(name);
}

bool isGalleryPath(std::string_view path) {
  return !path.contains("..") && !path.starts_with('/') && !hasControlCharacters(path);
}

} // namespace fennick

// The plug-in library as the module's registry uses it: loaded through the kernel's linker,
// its four classes made by name with their texts and watched classes, and gone again when it
// unloads.

#include <algorithm>
#include <set>
#include <vector>

#include "PluginsTestSupport.h"
#include "StIcon.h"

namespace {

struct Expected {
  const wchar_t* className;
  const char* name;
  const char* watched;
};

TEST(StandardPluginsLibrary, MakesItsFourPluginsByClassNameUntilUnloaded) {
  plugintest::loadPlugins();
  const Expected expected[] = {
      {L"StDWSDimstylePlugin", "Dimension styles", "AcDbDimStyleTableRecord"},
      {L"StDWSLayerPlugin", "Layers", "AcDbLayerTableRecord"},
      {L"StDWSLinetypePlugin", "Linetypes", "AcDbLinetypeTableRecord"},
      {L"StDWSTextstylePlugin", "Text styles", "AcDbTextStyleTableRecord"}};
  std::set<std::vector<std::uint32_t>> icons;
  for (const Expected& e : expected) {
    st::StDWSPluginPtr plugin = odrxCreateObject(e.className);
    ASSERT_FALSE(plugin.isNull()) << OdString(e.className).toUtf8();
    EXPECT_EQ(plugin->isA()->name(), e.className) << "the manager keys plug-ins by this";
    EXPECT_EQ(plugin->name().toUtf8(), e.name);
    ASSERT_EQ(plugin->classNames().size(), 1u);
    EXPECT_EQ(plugin->classNames()[0].toUtf8(), e.watched);
    for (const OdString& text :
         {plugin->purpose(), plugin->version(), plugin->publisher(), plugin->furtherInfo()})
      EXPECT_FALSE(text.isEmpty()) << e.name;
    // A fresh icon each time, the caller's to free: partly drawn, partly transparent, and
    // each plug-in's its own.
    st::StIconHandle icon = plugin->icon();
    ASSERT_NE(icon, nullptr) << e.name;
    const st::StIcon* image = st::stIconImage(icon);
    const auto drawn = std::count_if(image->pixels.begin(), image->pixels.end(),
                                     [](std::uint32_t p) { return (p >> 24) == 0xFF; });
    EXPECT_GT(drawn, 16) << e.name;
    EXPECT_LT(drawn, st::StIcon::kSize * st::StIcon::kSize - 16) << e.name;
    EXPECT_TRUE(
        icons.insert(std::vector<std::uint32_t>(image->pixels.begin(), image->pixels.end())).second)
        << e.name << " has the icon of another plug-in";
    st::stFreeIcon(icon);
    EXPECT_FALSE(plugin->propertyFormatter().isNull());
    EXPECT_TRUE(plugin->done()) << "nothing to report before a check starts";
    EXPECT_TRUE(plugin->getError().isNull());
  }

  // Unloaded, the classes are gone; loaded again, they are back.
  ASSERT_TRUE(odrxDynamicLinker()->unloadModule(L"StStandardPlugins"));
  EXPECT_TRUE(odrxCreateObject(L"StDWSLayerPlugin").isNull());
  plugintest::loadPlugins();
  EXPECT_FALSE(odrxCreateObject(L"StDWSLayerPlugin").isNull());
}

TEST(StandardPluginsLibrary, FormatsValuesAsAUserReadsThem) {
  st::StDWSPluginPtr plugin = plugintest::createPlugin(L"StDWSLayerPlugin");
  st::StPropertyFormatterPtr format = plugin->propertyFormatter();
  auto text = [&](const wchar_t* name, const OdVariant& value) {
    return format->format(name, value).toUtf8();
  };
  EXPECT_EQ(text(L"Color", OdVariant(std::int16_t{1})), "red");
  EXPECT_EQ(text(L"Color", OdVariant(std::int16_t{256})), "ByLayer");
  EXPECT_EQ(text(L"Color", OdVariant(std::int16_t{31})), "Color 31");
  EXPECT_EQ(text(L"Color", OdVariant(std::int32_t{0x00FF8000})), "255,128,0");
  EXPECT_EQ(text(L"Lineweight", OdVariant(std::uint32_t{0xFFFFFFFF})), "ByLayer");
  EXPECT_EQ(text(L"DIMLWD", OdVariant(std::int16_t{50})), "0.50");
  EXPECT_EQ(text(L"Transparency", OdVariant(std::uint32_t{0})), "ByLayer");
  EXPECT_EQ(text(L"Transparency", OdVariant(std::uint32_t{0x02000000 | 127})), "50%");
  EXPECT_EQ(text(L"Oblique angle", OdVariant(0.2617993877991494)), "15\u00B0");
  EXPECT_EQ(text(L"Text flags", OdVariant(std::int16_t{6})), "Backwards, upside down");
  EXPECT_EQ(text(L"DIMTXSTY", OdVariant()), "(not set)");
  EXPECT_EQ(text(L"Plot", OdVariant(true)), "Yes");
}

}  // namespace

#pragma once

// Enumerations shared by the drawing-database classes.
namespace OdDb {

// How an object is open. An object is open for write by one opener at a time; any number of
// openers may read it while nobody writes it.
enum OpenMode {
  kNotOpen = -1,
  kForRead = 0,
  kForWrite = 1,
  kForNotify = 2,  // treated as kForRead: notification never changes the object
};

// Lineweights in hundredths of a millimetre, with three special values.
enum LineWeight {
  kLnWt000 = 0,
  kLnWt005 = 5,
  kLnWt009 = 9,
  kLnWt013 = 13,
  kLnWt015 = 15,
  kLnWt018 = 18,
  kLnWt020 = 20,
  kLnWt025 = 25,
  kLnWt030 = 30,
  kLnWt035 = 35,
  kLnWt040 = 40,
  kLnWt050 = 50,
  kLnWt053 = 53,
  kLnWt060 = 60,
  kLnWt070 = 70,
  kLnWt080 = 80,
  kLnWt090 = 90,
  kLnWt100 = 100,
  kLnWt106 = 106,
  kLnWt120 = 120,
  kLnWt140 = 140,
  kLnWt158 = 158,
  kLnWt200 = 200,
  kLnWt211 = 211,
  kLnWtByLayer = -1,
  kLnWtByBlock = -2,
  kLnWtByLnDefault = -3,
};

// What cloning does when the target table already has a record of the same name.
enum DuplicateRecordCloning {
  kDrcNotApplicable = 0,
  kDrcIgnore = 1,   // keep the target's record; references to the source record map to it
  kDrcReplace = 2,  // overwrite the target's record with the source's, keeping its handle
  kDrcXrefMangleName = 3,
  kDrcMangleName = 4,
  kDrcUnmangleName = 5,
};

// The colour index values with a meaning of their own.
enum ColorIndex : short {
  kColorByBlock = 0,
  kColorByLayer = 256,
};

}  // namespace OdDb

#pragma once

#include "OdString.h"
#include "StExport.h"

// The module's string table: every user-visible text the module owns, under a fixed id.
// Code loads texts from here by id and never spells them again.
//
// Texts keep their line breaks ("\n", "\r\n") and printf-style markers as they are shown;
// a "%s" or "%d" is filled by the caller (see stFormatString for "%s").
enum StStringId : unsigned {
  kStrDuplicateFileName = 105,
  kStrNoPluginChecked = 106,
  kStrNoStandardsAssociated = 107,
  kStrAssociateStandardsCaption = 108,
  kStrCheckNotFinished = 109,
  kStrCheckNotFinishedCaption = 110,
  kStrFailedToCreatePluginObject = 111,
  kStrMissingStandardsFileCaption = 112,
  kStrMissingStandardsFile = 113,
  kStrStandardsViolationTitle = 114,
  kStrStandardsViolation = 115,
  kStrModuleTitle = 120,
  kStrMenuCheckStandards = 121,
  kStrMenuConfigureStandards = 122,
  kStrMenuEnableNotifications = 123,
  kStrMenuSettings = 124,
  kStrTipAssociated = 125,
  kStrTipMissingFile = 126,
  kStrTipNewViolation = 127,
  kStrTipNoStandards = 128,
  kStrFileNotFound = 129,
  kStrPurpose = 130,
  kStrVersion = 131,
  kStrPublisher = 132,
  kStrStandardsFileLabel = 133,
  kStrLastModified = 134,
  kStrFailedToCreatePlugin = 135,
  kStrColumnProperty = 136,
  kStrColumnCurrentValue = 137,
  kStrColumnStandardValue = 138,
  kStrIgnoredBy = 139,
  kStrColumnStandardsFile = 140,
  kStrChooseNext = 141,
  kStrProblemsFound = 142,
  kStrFixedAutomatically = 143,
  kStrFixedManually = 144,
  kStrIgnoredInCheck = 145,
  kStrCheckComplete = 146,
  kStrCheckCompleteCaption = 147,
  kStrFailedToLoadPlugin = 149,
  kStrRunCheckStandards = 150,
};

// The text stored under `id`; the empty string for an id the table does not hold.
ST_EXPORT OdString stLoadString(unsigned id);

// The text under `id` with its first "%s" replaced by `argument` (the text itself when it has
// none). Unlike printf-style formatting this takes any Unicode argument as it is.
ST_EXPORT OdString stFormatString(unsigned id, const OdString& argument);

// Fills the export table: each slot holds the address of its one implementation.
#include "frame/slots.h"

#include "frame/version.h"
#include "regex/compile/context.h"
#include "regex/match/search.h"
#include "regex/services/pattern_set.h"
#include "regex/services/replace.h"
#include "regex/services/replace_template.h"
#include "strings/compare.h"
#include "strings/edit.h"
#include "strings/find.h"
#include "strings/hash.h"
#include "strings/latin_case.h"
#include "strings/trim.h"
#include "unicode/case.h"
#include "unicode/convert.h"

namespace tav {

constinit ExportSlots exportSlots = {
#define TAV_EXPORT(ordinal, result, name, parameters, arguments, implementation) implementation,
#define TAV_VACANT(ordinal) nullptr,
#include "frame/exports.def"
#undef TAV_EXPORT
#undef TAV_VACANT
};

} // namespace tav

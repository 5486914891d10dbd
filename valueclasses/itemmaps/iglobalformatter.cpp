#include "valueclasses/itemmaps/iglobalformatter.h"

namespace values {

static const IGlobalFormatter *g_formatter = nullptr;

const IGlobalFormatter *IGlobalFormatter::Get() { return g_formatter; }

void IGlobalFormatter::Set(const IGlobalFormatter *formatter) { g_formatter = formatter; }

} // namespace values

#pragma once

#include "core/cleanup/CleanCatalog.h"
#include "core/cleanup/CleanContext.h"

#include <memory>

namespace nubo::CatalogRules {

/// The rule of every category of the catalogue on the system of the context's places, bound to
/// `context`, for `CleanCatalog`'s constructor; none for a category that system does not have.
/// Each scan reads the shared context only, so any number may run at once.
[[nodiscard]] CleanCatalog::Rules make(std::shared_ptr<const CleanContext> context);

} // namespace nubo::CatalogRules

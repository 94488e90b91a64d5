#include "farm/http/http_refusal.h"

#include "farm/base/errors.h"
#include "farm/uploads/package_reader.h"

namespace farm {

HttpRefusal HttpRefusalFor(const Refusal& refusal)
{
    const QString message = QString::fromUtf8(refusal.what());
    if (dynamic_cast<const NotFound*>(&refusal))
        return {404, "not_found", message};
    if (dynamic_cast<const Conflict*>(&refusal))
        return {409, "conflict", message};
    if (dynamic_cast<const TooLarge*>(&refusal))
        return {413, "too_large", message};
    if (dynamic_cast<const BadPackage*>(&refusal))
        return {422, "bad_package", message};
    if (dynamic_cast<const QuotaExceeded*>(&refusal))
        return {507, "quota_exceeded", message};
    return {400, "bad_request", message};
}

} // namespace farm

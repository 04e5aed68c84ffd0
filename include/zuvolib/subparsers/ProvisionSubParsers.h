// Device credential provisioning responses: X.509, ECC link and NP ticket.
#ifndef ZUVOLIB_SUBPARSERS_PROVISIONSUBPARSERS_H
#define ZUVOLIB_SUBPARSERS_PROVISIONSUBPARSERS_H

#include "zuvolib/export.h"
#include "zuvolib/parse/ResponseData.h"
#include "zuvolib/subparsers/BufferedSubParser.h"

#include <string>
#include <vector>

namespace velmora {
namespace zuvolib {

/// The X.509 provisioning response.
struct X509ProResponseData : ResponseData {
    std::vector<unsigned char> provisionData; ///< text of "rs", byte for byte
};

/// The ECC link provisioning response.
struct ECCLinkProResponseData : ResponseData {
    std::vector<unsigned char> provisionData; ///< text of "rs", byte for byte
};

/// The NP ticket provisioning response.
struct NPTicketProResponseData : ResponseData {
    std::vector<unsigned char> provisionData; ///< text of "rs", byte for byte
};

/// What the three provisioning parsers share: the header as `ParentParser`
/// reads it, and the body "provisionresponsedata" whose "rs" text becomes
/// the provision data, one byte per character and not decoded (the device's
/// credential store reads it as the server wrote it). Each "rs" replaces
/// the data an earlier one left. See `ParentParser::parse` for results and
/// exceptions.
class ZUVO_API ProvisionSubParser : public BufferedSubParser {
public:
    enum OwnTagType : unsigned int { TAG_PROVISIONRESPONSEDATA = 31, TAG_RS };

protected:
    /// `provisionData` is the field of `responseData` to fill.
    ProvisionSubParser(Expat& expat, ResponseData& responseData,
                       std::vector<unsigned char>& provisionData);

    bool canParseResultSubTag(unsigned int tagType) const override;
    bool onResultSubTagEndEvent(unsigned int tagType, const std::string& name) override;

private:
    std::vector<unsigned char>& provisionData;
};

/// Reads an X.509 provisioning response; see `ProvisionSubParser`.
class ZUVO_API X509ProSubParser : public ProvisionSubParser {
public:
    /// Keeps references to `expat` and `responseData`; both must outlive it.
    X509ProSubParser(Expat& expat, X509ProResponseData& responseData);
    const char* getParserName() const override { return "X509ProSubParser"; }
};

/// Reads an ECC link provisioning response; see `ProvisionSubParser`.
class ZUVO_API ECCLinkProSubParser : public ProvisionSubParser {
public:
    /// Keeps references to `expat` and `responseData`; both must outlive it.
    ECCLinkProSubParser(Expat& expat, ECCLinkProResponseData& responseData);
    const char* getParserName() const override { return "ECCLinkProSubParser"; }
};

/// Reads an NP ticket provisioning response; see `ProvisionSubParser`.
class ZUVO_API NPTicketProSubParser : public ProvisionSubParser {
public:
    /// Keeps references to `expat` and `responseData`; both must outlive it.
    NPTicketProSubParser(Expat& expat, NPTicketProResponseData& responseData);
    const char* getParserName() const override { return "NPTicketProSubParser"; }
};

} // namespace zuvolib
} // namespace velmora

#endif

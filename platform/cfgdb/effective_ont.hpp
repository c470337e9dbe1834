#pragma once

#include "cfgdb/records.hpp"
#include "cfgdb/references.hpp"

#include <cstdint>
#include <vector>

namespace xpon::cfgdb {

/// A service as an ONT gets it: from its template or its own record, with the overrides of the record applied.
struct EffectiveService {
    std::uint16_t position; ///< from 0
    std::uint8_t cross_connect;
    std::uint8_t dba; ///< 0 = type 4 at full rate
    bool overrides_s_vid;
    std::uint16_t s_vid;
    std::uint16_t c_vid;
    ProfileOntCrossConnect profile;
};

/// A configured ONT with everything that the checks want to know of it.
struct EffectiveOnt {
    std::uint16_t index; ///< flat, from 0
    PonOnt record;
    std::uint8_t ports_profile; ///< 0 = none
    std::uint8_t management_profile;
    std::uint8_t shaping_profile;
    std::vector<OntServices> own_services;  ///< the records, one per service
    std::vector<EffectiveService> services; ///< those whose cross-connect profile is defined
    std::vector<Reference> references;      ///< its own, and what it gets by its template; without repeats, in order
    std::uint64_t guaranteed_kbps;          ///< fixed and assured bandwidth of all its T-CONTs
};

/// The running state of one ONT, which must be configured.
EffectiveOnt evaluate_ont(const Records& records, std::uint16_t index, const PonOnt& record);

} // namespace xpon::cfgdb

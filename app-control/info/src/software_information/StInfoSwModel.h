#ifndef _ST_INFO_SW_MODEL_H_
#define _ST_INFO_SW_MODEL_H_

#include <string>

// The software versions of the watch. Values are read afresh on every call; a value that
// cannot be read is answered with the unknown-value string id.
class StInfoSwModel {
public:
    static StInfoSwModel *getInstance();
    virtual ~StInfoSwModel();

    // The firmware build, or the operator's approval version when the configuration has one.
    std::string getSwVersionInfo();
    std::string getTizenVersion();
    // The version of the installed security policy.
    std::string getSecurityStatus();

private:
    StInfoSwModel() = default;
    static StInfoSwModel *_instance;
};

#endif

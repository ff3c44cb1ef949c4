#pragma once
// qouFileType: the host's file-type registry. Each import format has one id;
// a library reports it as an int through qouFileType.
//
// Contract for a host's vendor: the ids are the registry's own numbers; a
// plug-in only names them (qouVELMORA) and converts them with int(qouFileType(id)).
enum qouFileTypeId {
    qouUNKNOWN = 0,
    qouVELMORA = 317,
};

class qouFileType {
public:
    qouFileType(qouFileTypeId id) : id_(id) {}
    operator int() const { return static_cast<int>(id_); }
    qouFileTypeId id() const { return id_; }

private:
    qouFileTypeId id_;
};

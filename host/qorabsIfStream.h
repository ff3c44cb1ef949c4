#pragma once
// qorabsIfStream: the input file the host opened for an import. A library may
// read it or, as this one does, take its name and open the file itself.
#include "host/utString.h"

class qorabsIfStream {
public:
    explicit qorabsIfStream(utString file_name) : file_name_(std::move(file_name)) {}
    // The name the host opened the file by.
    const utString& file_name() const { return file_name_; }

private:
    utString file_name_;
};

// What main.cpp asks of jobs.cpp: each job throws something of its own.
#pragma once

#include <stdexcept>
#include <string>

struct Fault : std::runtime_error {
    Fault(const std::string& what, int code) : std::runtime_error(what), code(code) {}
    int code;
};

// Says when it comes and goes, so that the order of unwinding shows.
struct Guard {
    explicit Guard(const char* name);
    ~Guard();
    const char* name;
};

int job(int number);
float scaled(float value, void (*step)(float));
void stop_if_large(float value);

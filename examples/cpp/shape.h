// Shapes for the example: an abstract class, and a template that two files instantiate.
#pragma once

class Shape {
  public:
    virtual unsigned area() const = 0;
    virtual const char* name() const = 0;

  protected:
    ~Shape() = default;
};

// The same instance from two files is one function in the program.
template <class T> T largest(const T* values, unsigned count) {
    T best = values[0];
    for (unsigned i = 1; i < count; i++)
        if (best < values[i]) best = values[i];
    return best;
}

// How often the one instance was called, from whichever file.
template <class T> struct Counter {
    static unsigned count;
};
template <class T> unsigned Counter<T>::count = 0;

template <class T> unsigned used() { return ++Counter<T>::count; }

const Shape* shapes(unsigned index);
unsigned largest_area();
void log_start(const char* who);

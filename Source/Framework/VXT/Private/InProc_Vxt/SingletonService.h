// Marks a service class as having exactly one object, of static storage
// duration, built when the library is loaded.
#pragma once

namespace vxt {

template <class Service>
class SingletonService {
 public:
  virtual ~SingletonService() = default;
};

}  // namespace vxt

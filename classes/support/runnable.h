// Runnable is the base of every object that owns a thread (servers,
// connections, the configuration factory). The thread enters through a
// static entry of the owning class, which calls Run() on the object.
#ifndef CLASSES_SUPPORT_RUNNABLE_H
#define CLASSES_SUPPORT_RUNNABLE_H

class Runnable {
 public:
  Runnable() = default;
  virtual ~Runnable() = default;
  Runnable(const Runnable&) = delete;
  Runnable& operator=(const Runnable&) = delete;

  // The body of the object's thread.
  virtual void Run() = 0;
};

#endif  // CLASSES_SUPPORT_RUNNABLE_H

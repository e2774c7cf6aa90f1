#include "krender-targets/private/DeepStack.h"

#include <pthread.h>

#include <cstddef>
#include <exception>

namespace krTargets
{
namespace
{

constexpr std::size_t kStackBytes = std::size_t{64} << 20; // taken from the system as far as it is used

struct Task
{
    const std::function<void()>& work;
    std::exception_ptr thrown;
};

void* run(void* argument)
{
    Task& task = *static_cast<Task*>(argument);
    try
    {
        task.work();
    }
    catch (...)
    {
        task.thrown = std::current_exception();
    }
    return nullptr;
}

} // namespace

void onDeepStack(const std::function<void()>& work)
{
    Task task{work, nullptr};
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, kStackBytes);
    pthread_t thread{};
    const bool isStarted = pthread_create(&thread, &attributes, run, &task) == 0;
    pthread_attr_destroy(&attributes);
    if (isStarted)
        pthread_join(thread, nullptr);
    else
        run(&task); // without room for another thread, the caller's stack has to do
    if (task.thrown)
        std::rethrow_exception(task.thrown);
}

} // namespace krTargets

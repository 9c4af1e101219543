/**
 * Records the calls made on a real DirectFB object.
 *
 *     CallLog log;
 *     CallRecorder<IDirectFBDisplayLayer> layer(View::_layer, log);
 *     layer.Watch<&IDirectFBDisplayLayer::SetOpacity>("SetOpacity");
 *     view->Hide();
 *     EXPECT_THAT(log, ElementsAre("SetOpacity(0)"));
 *
 * The object's function pointer is replaced by one that writes a line and then makes the real call,
 * so everything still happens. The pointers are put back when the recorder ends, which is before
 * the object is released. Arguments through which a call answers are written as "out". Calls of
 * other threads are made and not recorded: DirectFB renews a surface's clip from a thread of its
 * own when the surface has changed.
 */
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

#include <directfb.h>

namespace kestrin_test {

/** Calls in order, one line each: "FillRectangle(0, 0, 4, 4)". Recorders may share one. */
using CallLog = std::vector<std::string>;

/** What a call's arguments look like in the log. */
std::string Described(DFBSurfaceDrawingFlags flags);
std::string Described(DFBSurfaceBlittingFlags flags);
std::string Described(DFBSurfacePorterDuffRule rule);
std::string Described(DFBSurfaceTextFlags flags);
std::string Described(DFBSurfaceLockFlags flags);
std::string Described(DFBSurfaceFlipFlags flags);
std::string Described(DFBDisplayLayerCooperativeLevel level);
// In C++ DirectFB makes classes of these two; its functions take the structures beneath.
std::string Described(const DFBRegion_C* region);
std::string Described(const DFBRectangle_C* rectangle);
std::string Described(const DFBColor* color);
/** Width, height and format, with the flags that say what of them is given. */
std::string Described(const DFBSurfaceDescription* description);
std::string Described(const DFBDisplayLayerConfig* config);
/** Text of one byte as its character code. */
std::string Described(const char* text);

/** Gives an object a name in the logs of this process. */
void NameInLogs(const void* object, const std::string& name);
std::string NameOf(const void* object);

template <class T>
std::string Described(T value)
{
    if constexpr (std::is_pointer_v<T>) {
        using Pointee = std::remove_pointer_t<T>;
        // What is neither a description nor an object is room for an answer.
        if constexpr (std::is_class_v<Pointee> && !std::is_const_v<Pointee>)
            return NameOf(value);
        else
            return "out";
    } else {
        return std::to_string(value);
    }
}
inline std::string Described(DFBDisplayLayerConfig*)
{
    return "out";
}
inline std::string Described(DFBRectangle_C*)
{
    return "out";
}

template <class Interface>
class CallRecorder
{
public:
    /** Prefixed to every line; to tell two objects with one log apart. */
    CallRecorder(Interface* object, CallLog& log, const std::string& prefix = "")
        : _object(object), _real(*object), _log(log), _prefix(prefix)
    {
        Recorders()[object] = this;
    }
    ~CallRecorder()
    {
        for (const auto& restore : _restore)
            restore(_object, _real);
        Recorders().erase(_object);
    }
    CallRecorder(const CallRecorder&) = delete;
    CallRecorder& operator=(const CallRecorder&) = delete;

    /** Records the calls of one operation under a name. */
    template <auto Operation>
    void Watch(const char* name)
    {
        Forward<Operation, decltype(Operation)>::name = name;
        _object->*Operation = Forward<Operation, decltype(Operation)>::Call;
        _restore.push_back(
            [](Interface* object, const Interface& real) { object->*Operation = real.*Operation; });
    }

private:
    template <auto Operation, class Type>
    struct Forward;

    template <auto Operation, class... Arguments>
    struct Forward<Operation, DFBResult (*Interface::*)(Interface*, Arguments...)>
    {
        static inline const char* name = "";

        static DFBResult Call(Interface* object, Arguments... arguments)
        {
            CallRecorder& recorder = *Recorders().at(object);
            if (std::this_thread::get_id() == recorder._thread) {
                std::string line;
                ((line += (line.empty() ? "" : ", ") + Described(arguments)), ...);
                recorder._log.push_back(recorder._prefix + name + "(" + line + ")");
            }
            return (recorder._real.*Operation)(object, arguments...);
        }
    };

    static std::map<Interface*, CallRecorder*>& Recorders()
    {
        static std::map<Interface*, CallRecorder*> recorders;
        return recorders;
    }

    Interface* _object;
    const Interface _real;
    CallLog& _log;
    const std::string _prefix;
    const std::thread::id _thread = std::this_thread::get_id();
    std::vector<void (*)(Interface*, const Interface&)> _restore;
};

} // namespace kestrin_test

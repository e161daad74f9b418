"""A template that returns while threads it started use every object.

Each run checks what the run before left: its threads have ended with
"Korb:InvalidHandle" only, and its model no longer answers (while the same
native model, given again with `finish`, does). Unless `finish` is set, it then starts threads that read, write and call every member of
every object reachable from `model` and `repository` and use every file
through the bridge until an access raises "Korb:InvalidHandle".
"""

import sys
import types


# Threads use names of main's own: the runtime clears the template's globals.
def main(model, repository, finish):
    import io
    import threading

    import velcg

    state = sys.modules.setdefault("left_running_state", types.ModuleType("left_running_state"))
    for thread in getattr(state, "threads", []):
        thread.join(60)
        assert not thread.is_alive(), "a thread still reaches the objects of a run that has returned"
    assert not getattr(state, "failures", []), state.failures
    kept = getattr(state, "model", None)
    state.threads, state.failures, state.model = [], [], model
    try:
        kept and kept.Name
        assert not kept, "an object kept from a run that has returned still answers"
    except velcg.Error as e:
        assert e.identifier == "Korb:InvalidHandle", e
    if finish:
        # The same native object in a later run is a Python object of its own.
        assert model is None or (model is not kept and model == kept and model.Systems is not None)
        return

    def attempt(call):
        try:
            return call()
        except velcg.Error as e:
            if e.identifier == "Korb:InvalidHandle":
                raise

    def use(obj, name):
        member = getattr(obj, name)
        return member() if isinstance(member, velcg.Method) else setattr(obj, name, member) or member

    def sweep(roots, bridge):
        seen, todo = set(), list(roots)
        while todo:
            obj = todo.pop()
            if obj not in seen:
                seen.add(obj)
                for name in dir(obj):
                    value = attempt(lambda: use(obj, name))
                    todo += [v for v in (value if isinstance(value, list) else [value]) if isinstance(v, velcg.Object)]
        for i in range(bridge.numberOfFiles):
            for call in (
                lambda: bridge.setAttribute(i, "Creator", bridge.getStringAttribute(i, "Name")),
                lambda: bridge.getStringArrayAttribute(i, "RequiredIncludes"),
                lambda: bridge.addSectionContent(i, "Functions", "int f(void);\n"),
                lambda: bridge.writeSection(i, "Functions", io.BytesIO()),
                lambda: bridge.customContents(i).addContentToSection("Custom", "x"),
            ):
                attempt(call)

    def run(roots, bridge, started):
        started.release()
        try:
            while True:
                sweep(roots, bridge)
        except Exception as e:
            if not isinstance(e, velcg.Error) or e.identifier != "Korb:InvalidHandle":
                state.failures.append(repr(e))

    started = threading.Semaphore(0)
    for _ in range(2):
        state.threads.append(threading.Thread(target=run, args=((model, repository), velcg.bridge(repository), started), daemon=True))
        state.threads[-1].start()
        started.acquire()


main(globals().get("model"), globals().get("repository"), globals().get("finish"))

"""A template that returns while threads it started still use every object.

Each run first joins the threads of the run before and raises their
failures, and checks that the model that run was given is out of its reach
now, even if it lives. Then (unless the global `finish` is set) it starts
threads that read
and write every property of every object reachable from `model` and
`repository`, call every method, and fill, read and write every file
through the bridge and its custom contents, until an access says that the
objects are gone ("Korb:InvalidHandle"). Any other exception in a thread is
a failure. The threads use only names of their own: the runtime clears the
template's globals when it returns.
"""

import sys
import types


def main(model, repository, finish, threads=2):
    import io
    import threading

    import velcg

    state = sys.modules.setdefault("left_running_state", types.ModuleType("left_running_state"))
    for thread in getattr(state, "threads", []):
        thread.join(60)
        assert not thread.is_alive(), "a thread still reaches the objects of a run that has returned"
    failures = getattr(state, "failures", [])
    kept = getattr(state, "model", None)
    state.threads, state.failures, state.model = [], [], model
    assert not failures, "\n".join(failures)
    try:
        kept and kept.Name
    except velcg.Error as e:
        assert e.identifier == "Korb:InvalidHandle", e
    else:
        assert not kept, "an object kept from a run that has returned still answers"
    if finish:
        return

    def reachable(*roots):
        seen, order, todo = set(), [], list(roots)
        while todo:
            obj = todo.pop()
            if obj not in seen:
                seen.add(obj)
                order.append(obj)
                for name in dir(obj):
                    value = getattr(obj, name)
                    todo += [v for v in (value if isinstance(value, list) else [value]) if isinstance(v, velcg.Object)]
        return order

    def attempt(call):
        try:
            call()
        except velcg.Error as e:
            if e.identifier == "Korb:InvalidHandle":
                raise

    def use(obj, name):
        member = getattr(obj, name)
        if isinstance(member, velcg.Method):
            member()
        else:
            setattr(obj, name, member)

    def sweep(objects, bridge):
        for obj in objects:
            for name in dir(obj):
                attempt(lambda: use(obj, name))
        for i in range(bridge.numberOfFiles):
            for call in (
                lambda: bridge.setAttribute(i, "Creator", bridge.getStringAttribute(i, "Name")),
                lambda: bridge.getStringArrayAttribute(i, "RequiredIncludes"),
                lambda: bridge.addSectionContent(i, "Functions", "int f(void);\n"),
                lambda: bridge.writeSection(i, "Functions", io.BytesIO()),
                lambda: bridge.customContents(i).isCustomSection("Custom"),
                lambda: bridge.customContents(i).addContentToSection("Custom", "x"),
            ):
                attempt(call)

    def run(objects, bridge, started):
        started.release()
        try:
            while True:
                sweep(objects, bridge)
        except velcg.Error as e:
            if e.identifier != "Korb:InvalidHandle":
                state.failures.append(repr(e))
        except Exception as e:  # a failure of the module, reported by the next run
            state.failures.append(repr(e))

    objects = reachable(model, repository)
    started = threading.Semaphore(0)
    for _ in range(threads):
        args = (objects, velcg.bridge(repository), started)
        state.threads.append(threading.Thread(target=run, args=args, daemon=True))
        state.threads[-1].start()
    for _ in range(threads):
        started.acquire()


main(globals().get("model"), globals().get("repository"), globals().get("finish"))

"""The module under random sequences of operations (Hypothesis, stateful):
models made and destroyed with their objects and bridges kept; members read,
written and called by random names with values of every Python type; the
bridge with random indices, names and file objects. Every failure must be a
velcg.Error (or AttributeError for an unknown member, TypeError for an
argument pybind11 cannot take), a write read back or warn, an object of a
destroyed model be refused. VELCG_HYPOTHESIS_EXAMPLES (default 30) and
VELCG_HYPOTHESIS_STEPS (default 30) search longer, e.g. 3000 and 50.
"""

import io
import math
import os

import velcg
import velcg_testing
from conftest import closed_sink
from hypothesis import HealthCheck, settings
from hypothesis import strategies as st
from hypothesis.stateful import Bundle, RuleBasedStateMachine, initialize, multiple, precondition, rule

EXAMPLES = int(os.environ.get("VELCG_HYPOTHESIS_EXAMPLES", "30"))
STEPS = int(os.environ.get("VELCG_HYPOTHESIS_STEPS", "30"))
WRITES_FILES = {"serializeModel", "serializeModelAfterScriv"}  # into a directory their argument names

names = st.one_of(st.sampled_from(["Name", "Type", "Creator", "Filter", "RequiredIncludes", *velcg.sectionNames]),
                  st.text(max_size=12).filter(lambda s: not s.startswith("_")))
scalars = st.one_of(st.none(), st.booleans(), st.integers(), st.integers(-2**31, 2**31 - 1), st.floats(),
                    st.text(max_size=20), st.binary(max_size=8), st.sampled_from(["a\0b", "\udcff"]))
values = st.one_of(scalars, st.lists(scalars, max_size=3), st.tuples(scalars), st.dictionaries(st.text(), scalars))


SINKS = [io.BytesIO, closed_sink, io.StringIO, lambda: open(os.devnull, "rb"), lambda: open(os.devnull, "w")]


class Operations(RuleBasedStateMachine):
    objects = Bundle("objects")
    bridges = Bundle("bridges")

    def __init__(self):
        super().__init__()
        self.live, self.dead, self.taken = [], set(), []

    def teardown(self):
        for fixture in self.live:
            fixture.close()

    def answer(self, owner, action):
        """(result,) when action succeeds, None when refused as the rules allow."""
        try:
            result = action()
        except velcg.Error as e:
            assert owner not in self.dead or e.identifier == "Korb:InvalidHandle", e
            return None
        except TypeError:
            return None
        except AttributeError as e:
            assert isinstance(e, velcg.UnknownMemberError), repr(e)
            return None
        assert owner not in self.dead, "an object of a destroyed model answered"
        return (result,)

    def member(self, owner, obj, data):
        members = self.answer(owner, lambda: dir(obj))
        return data.draw(st.sampled_from(members[0]) if members and members[0] else names)

    def fixture_parts(self):
        fixture = velcg_testing.Fixture()
        self.live.append(fixture)
        parts = [(id(fixture), o) for o in [fixture.model, fixture.repository, *fixture.objects().values()]]
        self.taken += parts
        return multiple(*parts)

    @initialize(target=objects)
    def start(self):
        return self.fixture_parts()

    @precondition(lambda self: len(self.live) < 3)
    @rule(target=objects)
    def make(self):
        return self.fixture_parts()

    @precondition(lambda self: self.live)
    @rule(target=bridges, data=st.data())
    def open_bridge(self, data):
        fixture = data.draw(st.sampled_from(self.live))
        return (id(fixture), velcg.bridge(fixture.repository))

    @precondition(lambda self: self.live)
    @rule(data=st.data())
    def destroy(self, data):
        fixture = data.draw(st.sampled_from(self.live))
        fixture.close()
        self.live.remove(fixture)
        self.dead.add(id(fixture))

    @rule(entry=objects, data=st.data(), arguments=st.lists(values, max_size=3))
    def read_or_call(self, entry, data, arguments):
        owner, obj = entry
        name = self.member(owner, obj, data)
        member = self.answer(owner, lambda: getattr(obj, name))
        if member and isinstance(member[0], velcg.Method) and name not in WRITES_FILES:
            self.answer(owner, lambda: member[0](*arguments))

    @rule(entry=objects, data=st.data())
    def write(self, entry, data):
        owner, obj = entry
        name = self.member(owner, obj, data)
        other = data.draw(st.sampled_from(self.taken))[1]
        value = data.draw(st.one_of(values, st.just(other), st.just([other, obj])))
        warnings = velcg_testing.Warnings()
        if self.answer(owner, lambda: setattr(obj, name, value)):
            read = getattr(obj, name)
            # A write the library drops in part or whole says so.
            assert reads_back(value, read) or warnings.identifiers(), (velcg.classOf(obj), name, value, read)

    @rule(entry=bridges, data=st.data(), sink=st.sampled_from(SINKS))
    def use_bridge(self, entry, data, sink):
        owner, bridge = entry
        index = data.draw(st.one_of(st.integers(-1, 5), st.integers(), st.booleans(), st.floats(), st.text()))
        name, other, value = data.draw(names), data.draw(names), data.draw(values)
        out = sink()
        try:
            self.answer(owner, data.draw(st.sampled_from([
                lambda: bridge.getBooleanAttribute(index, name),
                lambda: bridge.getStringAttribute(index, name),
                lambda: bridge.getStringArrayAttribute(index, name),
                lambda: bridge.setAttribute(index, name, value),
                lambda: bridge.addSectionContent(index, name, value),
                lambda: bridge.addCustomSection(index, name, other),
                lambda: bridge.appendMissingTokens(index, name),
                lambda: bridge.writeSection(index, name, out),
                lambda: bridge.writeFile(index, self.directory),
                lambda: bridge.customContents(index).addContentToSection(name, value),
                lambda: bridge.customContents(index).getCustomSectionContent(name, other),
                lambda: bridge.isStringAttribute(name),
                lambda: bridge.numberOfFiles,
            ])))
        finally:
            out.close()


def reads_back(value, read):
    """Whether a property written with value may read as read."""
    if isinstance(value, float) and math.isnan(value):
        return isinstance(read, float) and math.isnan(read)
    if isinstance(value, int) and not isinstance(value, bool) and isinstance(read, str):
        return True  # an enumerator given by its value reads as its name
    if value is None:
        return read in (None, [])
    if isinstance(value, velcg.Object) and isinstance(read, list):
        return read == [value]
    return read == (list(value) if isinstance(value, tuple) else value)


def test_random_operations_keep_the_rules(tmp_path):
    Operations.directory = str(tmp_path)
    Operations.TestCase.settings = settings(max_examples=EXAMPLES, stateful_step_count=STEPS, deadline=None,
                                            database=None, suppress_health_check=list(HealthCheck))
    Operations.TestCase().runTest()

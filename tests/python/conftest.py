"""Fixtures for the tests of the module velcg.

Both velcg and the test-only module velcg_testing are imported from their
build folders (PYTHONPATH, as ctest sets it). velcg_testing.Fixture builds a
model with an element of every kind and a repository with a module header,
a module source, a data-types file and a generic file (tests/support/
EveryKindModel.hpp); the velcg objects taken from it do not keep it alive.
"""

import contextlib
import io

import pytest
import velcg
import velcg_testing

# The files of the fixture's repository, by index.
HEADER, SOURCE, TYPES, GENERIC = range(4)


@pytest.fixture
def fixture():
    built = velcg_testing.Fixture()
    yield built
    built.close()


@pytest.fixture
def objects(fixture):
    """The named parts of the fixture, plus "model" and "repository"."""
    parts = dict(fixture.objects())
    parts["model"] = fixture.model
    parts["repository"] = fixture.repository
    return parts


@pytest.fixture
def bridge(fixture):
    return velcg.bridge(fixture.repository)


@contextlib.contextmanager
def raises_diagnostic(identifier, arguments=None):
    """Expects a velcg.Error with this identifier (and these arguments)."""
    with pytest.raises(velcg.Error) as caught:
        yield caught
    assert caught.value.identifier == identifier, str(caught.value)
    if arguments is not None:
        assert caught.value.arguments == arguments
    assert str(caught.value).startswith(identifier + ": ")


def closed_sink():
    sink = io.BytesIO()
    sink.close()
    return sink


def describe(obj):
    """The host's description of the class of a live velcg object."""
    return velcg_testing.describeClass(velcg.classOf(obj))


def python_class(qualified_name):
    """The Python class of an object-system class ("VelCG.Port" -> velcg.Port)."""
    return getattr(velcg, qualified_name.rsplit(".", 1)[-1])

"""Tests that every public name has an example in its docstring, and that every example runs."""

import doctest
import inspect
import typing

import pytest

import vex2
import vex2.raw

PARSER = doctest.DocTestParser()
FLAGS = doctest.NORMALIZE_WHITESPACE | doctest.ELLIPSIS


def documented():
    """(name, object) of every public class, function, method and property."""
    for name in vex2.__all__:
        found = getattr(vex2, name)
        yield name, found
        if not inspect.isclass(found) or issubclass(found, Exception):
            continue
        bases = [base for base in found.__mro__ if base.__module__.startswith("vex2")]
        for member, value in [pair for base in bases for pair in vars(base).items()]:
            is_ours = inspect.isfunction(value) or isinstance(value, property)
            if is_ours and not member.startswith("_"):
                yield f"{name}.{member}", value


DOCUMENTED = dict(documented(), raw=vex2.raw, require=vex2.raw.require)
# An example of these would repeat the example of their class.
WITHOUT_EXAMPLE = {"Recorder", "Editor", "PlateEditor", "Follow"}


@pytest.mark.parametrize("name", DOCUMENTED)
def test_docstring_has_example_that_runs(name, folder):
    text = inspect.getdoc(DOCUMENTED[name]) or ""
    assert text, f"{name} has no docstring"
    examples = PARSER.get_examples(text)
    assert examples or name in WITHOUT_EXAMPLE, f"{name} has no example"
    if not examples:
        return
    test = doctest.DocTest(examples, {"vex2": vex2}, name, None, None, text)
    said: typing.List[str] = []
    result = doctest.DocTestRunner(optionflags=FLAGS).run(test, out=said.append)
    assert result.failed == 0, "".join(said)


def test_failing_examples_in_docstrings_are_noticed():
    text = ">>> 1 + 1\n3\n"
    test = doctest.DocTest(PARSER.get_examples(text), {}, "wrong", None, None, text)
    result = doctest.DocTestRunner(verbose=False).run(test, out=lambda said: None)
    assert result.failed == 1

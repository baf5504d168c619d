"""Every public name has an example in its docstring, and every example runs."""

import doctest
import inspect
import typing

import pytest

import vex2

PARSER = doctest.DocTestParser()
FLAGS = doctest.NORMALIZE_WHITESPACE | doctest.ELLIPSIS


def documented():
    """(name, object) of every public class, function, method and property."""
    for name in vex2.__all__:
        found = getattr(vex2, name)
        yield name, found
        if not inspect.isclass(found) or issubclass(found, Exception):
            continue
        for member, value in vars(found).items():
            is_ours = inspect.isfunction(value) or isinstance(value, property)
            if is_ours and not member.startswith("_"):
                yield f"{name}.{member}", value


DOCUMENTED = dict(documented())
# An example of these would show nothing that their class's does not.
WITHOUT_EXAMPLE = {"Recorder", "Editor", "PlateEditor", "Follow"}


@pytest.mark.parametrize("name", DOCUMENTED)
def test_docstring_has_example_that_runs(name, folder):
    text = inspect.getdoc(DOCUMENTED[name]) or ""
    assert text, f"{name} has no docstring"
    examples = PARSER.get_examples(text)
    assert examples or name in WITHOUT_EXAMPLE, f"{name} has no example"
    if "study.vex" in text and not (folder / "study.vex").exists():
        pytest.skip("a study is made by the vex command: set VEX2_COMMAND")
    if not examples:
        return
    test = doctest.DocTest(examples, {"vex2": vex2}, name, None, None, text)
    said: typing.List[str] = []
    result = doctest.DocTestRunner(optionflags=FLAGS).run(test, out=said.append)
    assert result.failed == 0, "".join(said)


def test_docstrings_tell_an_example_that_fails():
    text = ">>> 1 + 1\n3\n"
    test = doctest.DocTest(PARSER.get_examples(text), {}, "wrong", None, None, text)
    result = doctest.DocTestRunner(verbose=False).run(test, out=lambda said: None)
    assert result.failed == 1

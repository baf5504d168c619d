"""The type of a mutation."""

import dataclasses


@dataclasses.dataclass(frozen=True)
class Mutation:
    kind: str
    name: str
    file: str
    what: str  # what is removed, in words
    original: str  # occurs once in the file
    replacement: str
    tests: str  # the test programs, optionally with a pattern, that are most likely to notice
    redundant: str = ""  # why no test can notice


def barrier(*fields, **more):
    return Mutation("barrier", *fields, **more)


def lock(*fields, **more):
    return Mutation("lock", *fields, **more)


def check(*fields, **more):
    return Mutation("check", *fields, **more)

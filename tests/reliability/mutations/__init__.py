"""The mutations of mutate.py: each removes one safeguard of documents or their readers."""

from .barriers import BARRIERS
from .checks import CHECKS
from .locks import LOCKS

MUTATIONS = BARRIERS + LOCKS + CHECKS

# SPDX-License-Identifier: MIT
"""The version of the package, which is that of the library it is made for."""
__version__ = "0.1.0"

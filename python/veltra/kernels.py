# SPDX-License-Identifier: MIT
"""Which variant of the library's kernels runs. All give the same results."""
from typing import Dict, Optional

from ._library import library


def kernels_in_force() -> Dict[str, str]:
    """For each family of kernels the variant in force, such as {"crc32": "plain"}."""
    names = [library.VLKernelFamilyName(i) for i in range(library.VLKernelFamilyCount())]
    return {name.decode(): library.VLKernelFamilyInForce(name).decode() for name in names}


def use_kernel(family: str, variant: Optional[str] = None) -> bool:
    """Sends the calls of a family to a variant, or to the best one again.

    False, and nothing changes, when there is none of that name or the processor does not run it.
    """
    if "\0" in family or "\0" in (variant or ""):
        return False
    name = None if variant is None else variant.encode()
    return library.VLKernelFamilyUse(family.encode(), name)

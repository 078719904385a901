# SPDX-License-Identifier: MIT
# fish completion for zvisp-simulator, which takes the options of zvisp.
complete -c zvisp-simulator -w zvisp

// winddi.h includes this header of display drivers; a printer driver needs nothing of it.

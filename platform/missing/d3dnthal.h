// winddi.h includes this header of display drivers. A printer driver needs nothing from it.

C     Answers 0, or the number of the first check that fails.
      subroutine vexfunction(nlhs, plhs, nrhs, prhs)
      implicit none
      include 'oxfort.inc'
      integer*4 nlhs, nrhs, dims(2), cut
      integer*8 plhs(*), prhs(*), a, s, zero, wide(2)
      real*8 x(4)
      complex*16 z(2)
      character*5 names(2)
      character*8 text
      real*8 failed
      zero = 0
      failed = 0
      if (nlhs .gt. 1 .or. nrhs .gt. 0) failed = prhs(1)
      dims(1) = 2
      dims(2) = 2
      wide(1) = 3
      wide(2) = 1
      names(1) = 'one'
      names(2) = 'two'
      a = OXCREATENUMERICARRAY(2, dims, oxDOUBLE_CLASS, oxCOMPLEX)
      z(1) = (1d0, 2d0)
      z(2) = (3d0, 4d0)
      call OXCOPYCOMPLEX16TOPTR(OXGETPR(a), OXGETPI(a), z, 2)
      call OXCOPYPTRTOREAL8(OXGETPI(a), x, 4)
      if (x(2) .ne. 4d0 .or. x(3) .ne. 0d0) failed = 1
      a = OXCREATECELLARRAY730(wide(2), wide)
      if (OXGETM(a) .ne. 3 .or. OXGETN730(a) .ne. 1) failed = 2
      s = OXCREATESTRUCTMATRIX(1, 1, 2, names)
      call OXSETFIELD(s, 0, 'two', OXCREATESTRING('some text '))
      a = OXGETFIELD730(s, zero, 'two  ')
      if (OXISCHAR(a) .ne. 1 .or. OXGETN(a) .ne. 9) failed = 3
      cut = OXGETSTRING(a, text, 4)
      if (cut .ne. 1 .or. text(1:4) .ne. 'some') failed = 4
      text = OXGETCLASSNAME(a)
      if (text .ne. 'char') failed = 5
      if (OXCLASSIDFROMCLASSNAME('Int8') .ne. oxINT8_CLASS) failed = 6
      if (OXISCLASS(s, 'struct') .ne. 1) failed = 7
      if (OXISINF(OXGETINF()) .ne. 1 .or. OXGETEPS() .gt. 1d-15)
     &  failed = 8
      plhs(1) = OXCREATEDOUBLESCALAR(failed)
      end

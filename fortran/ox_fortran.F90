! The array library for Fortran: explicit interfaces to the OX* entry points, with text as
! character(len=*), constants, and pointers to an array's data.
!
! An error that the library raises passes through Fortran frames without running any clean-up there:
! an allocatable array of the caller is lost. Take work space from OXCALLOC730 instead, which is freed
! when the call of the module ends, whatever happens.
!
! Compile this one file with your own sources; it includes the others. Arrays are integers of kind
! ox_handle, sizes of the 730 forms of kind ox_size, sizes of the other forms of kind c_int.
! Predicates answer an integer, 0 or 1. Positions count from zero, as in C.
#include "ox_shapes.inc"
#include "ox_entries.inc"
#include "ox_copies.inc"

module ox_fortran
  use ox_entries
  use ox_copies
  implicit none
  public

  integer(c_int), parameter :: oxREAL = 0, oxCOMPLEX = 1
  integer(c_int), parameter :: oxUNKNOWN_CLASS = 0, oxCELL_CLASS = 1, oxSTRUCT_CLASS = 2, &
      oxLOGICAL_CLASS = 3, oxCHAR_CLASS = 4, oxVOID_CLASS = 5, oxDOUBLE_CLASS = 6, &
      oxSINGLE_CLASS = 7, oxINT8_CLASS = 8, oxUINT8_CLASS = 9, oxINT16_CLASS = 10, &
      oxUINT16_CLASS = 11, oxINT32_CLASS = 12, oxUINT32_CLASS = 13, oxINT64_CLASS = 14, &
      oxUINT64_CLASS = 15, oxFUNCTION_CLASS = 16, oxOPAQUE_CLASS = 17, oxOBJECT_CLASS = 18

contains

  ! --- Data in place ---

  ! The elements of a full real double array as an M-by-N matrix; they stay the array's.
  function ox_matrix(a) result(x)
    integer(ox_handle), intent(in) :: a
    real(c_double), pointer :: x(:, :)
    call c_f_pointer(transfer(OXGETPR(a), c_null_ptr), x, [OXGETM730(a), OXGETN730(a)])
  end function

  ! The same as one column.
  function ox_vector(a) result(x)
    integer(ox_handle), intent(in) :: a
    real(c_double), pointer :: x(:)
    call c_f_pointer(transfer(OXGETPR(a), c_null_ptr), x, [OXGETNUMBEROFELEMENTS730(a)])
  end function

  ! --- Text ---

  ! A 1-by-n char array of the text without its trailing blanks.
  function OXCREATESTRING(s) result(a)
    character(len=*), intent(in) :: s
    integer(ox_handle) :: a
    a = c_OXCREATESTRING(s, len(s, ox_size))
  end function

  ! The first n characters of a char array, blank-padded; 1 when it is longer or not char, else 0.
  function OXGETSTRING(a, s, n) result(cut)
    integer(ox_handle), intent(in) :: a
    character(len=*), intent(inout) :: s
    integer(c_int), intent(in) :: n
    integer(c_int) :: cut
    cut = c_OXGETSTRING(a, s, n, len(s, ox_size))
  end function

  ! An m-row char array of the texts.
  function OXCREATECHARMATRIXFROMSTRINGS(m, s) result(a)
    integer(c_int), intent(in) :: m
    character(len=*), intent(in) :: s(*)
    integer(ox_handle) :: a
    a = c_OXCREATECHARMATRIXFROMSTRINGS(m, s, len(s, ox_size))
  end function

  function OXGETCLASSNAME(a) result(name)
    integer(ox_handle), intent(in) :: a
    character(len=:), allocatable :: name
    character(len=256) :: buffer
    call c_OXGETCLASSNAME(buffer, len(buffer, ox_size), a)
    name = trim(buffer)
  end function

  function OXCLASSIDFROMCLASSNAME(name) result(id)
    character(len=*), intent(in) :: name
    integer(c_int) :: id
    id = c_OXCLASSIDFROMCLASSNAME(name, len(name, ox_size))
  end function

  function OXISCLASS(a, name) result(answer)
    integer(ox_handle), intent(in) :: a
    character(len=*), intent(in) :: name
    integer(c_int) :: answer
    answer = c_OXISCLASS(a, name, len(name, ox_size))
  end function

  ! The text without trailing blanks at address p, which has room for n + 1 bytes.
  subroutine OXCOPYCHARACTERTOPTR(p, s, n)
    integer(ox_handle), intent(in) :: p
    character(len=*), intent(in) :: s
    integer(c_int), intent(in) :: n
    call c_OXCOPYCHARACTERTOPTR(p, s, n, len(s, ox_size))
  end subroutine

  ! The NUL-terminated text at address p as n characters, cut or blank-padded.
  subroutine OXCOPYPTRTOCHARACTER(p, s, n)
    integer(ox_handle), intent(in) :: p
    character(len=*), intent(inout) :: s
    integer(c_int), intent(in) :: n
    call c_OXCOPYPTRTOCHARACTER(p, s, n, len(s, ox_size))
  end subroutine

  ! --- Structs; trailing blanks of names do not count ---

  function OXCREATESTRUCTMATRIX(m, n, nfields, names) result(a)
    integer(c_int), intent(in) :: m, n, nfields
    character(len=*), intent(in) :: names(*)
    integer(ox_handle) :: a
    a = c_OXCREATESTRUCTMATRIX(m, n, nfields, names, len(names, ox_size))
  end function

  function OXCREATESTRUCTMATRIX730(m, n, nfields, names) result(a)
    integer(ox_size), intent(in) :: m, n
    integer(c_int), intent(in) :: nfields
    character(len=*), intent(in) :: names(*)
    integer(ox_handle) :: a
    a = c_OXCREATESTRUCTMATRIX730(m, n, nfields, names, len(names, ox_size))
  end function

  function OXCREATESTRUCTARRAY(ndim, dims, nfields, names) result(a)
    integer(c_int), intent(in) :: ndim, dims(*), nfields
    character(len=*), intent(in) :: names(*)
    integer(ox_handle) :: a
    a = c_OXCREATESTRUCTARRAY(ndim, dims, nfields, names, len(names, ox_size))
  end function

  function OXCREATESTRUCTARRAY730(ndim, dims, nfields, names) result(a)
    integer(ox_size), intent(in) :: ndim, dims(*)
    integer(c_int), intent(in) :: nfields
    character(len=*), intent(in) :: names(*)
    integer(ox_handle) :: a
    a = c_OXCREATESTRUCTARRAY730(ndim, dims, nfields, names, len(names, ox_size))
  end function

  function OXGETFIELD(a, i, name) result(v)
    integer(ox_handle), intent(in) :: a
    integer(c_int), intent(in) :: i
    character(len=*), intent(in) :: name
    integer(ox_handle) :: v
    v = c_OXGETFIELD(a, i, name, len(name, ox_size))
  end function

  function OXGETFIELD730(a, i, name) result(v)
    integer(ox_handle), intent(in) :: a
    integer(ox_size), intent(in) :: i
    character(len=*), intent(in) :: name
    integer(ox_handle) :: v
    v = c_OXGETFIELD730(a, i, name, len(name, ox_size))
  end function

  subroutine OXSETFIELD(a, i, name, v)
    integer(ox_handle), intent(in) :: a, v
    integer(c_int), intent(in) :: i
    character(len=*), intent(in) :: name
    call c_OXSETFIELD(a, i, name, v, len(name, ox_size))
  end subroutine

  subroutine OXSETFIELD730(a, i, name, v)
    integer(ox_handle), intent(in) :: a, v
    integer(ox_size), intent(in) :: i
    character(len=*), intent(in) :: name
    call c_OXSETFIELD730(a, i, name, v, len(name, ox_size))
  end subroutine

  function OXGETFIELDNUMBER(a, name) result(n)
    integer(ox_handle), intent(in) :: a
    character(len=*), intent(in) :: name
    integer(c_int) :: n
    n = c_OXGETFIELDNUMBER(a, name, len(name, ox_size))
  end function

  function OXGETFIELDNAMEBYNUMBER(a, n) result(name)
    integer(ox_handle), intent(in) :: a
    integer(c_int), intent(in) :: n
    character(len=:), allocatable :: name
    character(len=256) :: buffer
    call c_OXGETFIELDNAMEBYNUMBER(buffer, len(buffer, ox_size), a, n)
    name = trim(buffer)
  end function

  function OXADDFIELD(a, name) result(n)
    integer(ox_handle), intent(in) :: a
    character(len=*), intent(in) :: name
    integer(c_int) :: n
    n = c_OXADDFIELD(a, name, len(name, ox_size))
  end function

  function OXGETPROPERTY(a, i, name) result(v)
    integer(ox_handle), intent(in) :: a
    integer(c_int), intent(in) :: i
    character(len=*), intent(in) :: name
    integer(ox_handle) :: v
    v = c_OXGETPROPERTY(a, i, name, len(name, ox_size))
  end function

  subroutine OXSETPROPERTY(a, i, name, v)
    integer(ox_handle), intent(in) :: a, v
    integer(c_int), intent(in) :: i
    character(len=*), intent(in) :: name
    call c_OXSETPROPERTY(a, i, name, v, len(name, ox_size))
  end subroutine

  ! --- Errors and warnings; raising does not return ---

  subroutine OXERRMSGTXT(s)
    character(len=*), intent(in) :: s
    call c_OXERRMSGTXT(s, len(s, ox_size))
  end subroutine

  subroutine OXERRMSGIDANDTXT(id, s)
    character(len=*), intent(in) :: id, s
    call c_OXERRMSGIDANDTXT(id, s, len(id, ox_size), len(s, ox_size))
  end subroutine

  subroutine OXWARNINGMSGTXT(s)
    character(len=*), intent(in) :: s
    call c_OXWARNINGMSGTXT(s, len(s, ox_size))
  end subroutine

  subroutine OXWARNINGMSGIDANDTXT(id, s)
    character(len=*), intent(in) :: id, s
    call c_OXWARNINGMSGIDANDTXT(id, s, len(id, ox_size), len(s, ox_size))
  end subroutine

end module

! Answers 0, or the number of the first check that fails.
subroutine vexFunction(nlhs, plhs, nrhs, prhs) bind(C, name="vexFunction")
  use ox_fortran
  implicit none
  integer(c_int), value :: nlhs, nrhs
  integer(ox_handle) :: plhs(*), prhs(*)
  integer(ox_handle) :: a, c, s, pr, pi, block
  integer(ox_size) :: dims(3), jc(3)
  integer(c_int) :: dims32(2), i4(3)
  integer(c_int8_t) :: i1(3)
  integer(c_int16_t) :: i2(3)
  integer(c_int64_t) :: i8(3)
  real(c_float) :: r4(3)
  real(c_double) :: r8(3)
  complex(c_float_complex) :: z8(2)
  complex(c_double_complex) :: z16(2)
  character(len=6) :: names(2), text
  integer :: checked, failed

  checked = 0
  failed = 0
  dims = [2, 3, 4] ! 1 and 2: sizes of both widths
  dims32 = [5, 6]
  a = OXCREATENUMERICARRAY730(3_ox_size, dims, oxINT16_CLASS, oxREAL)
  call check(OXGETNUMBEROFELEMENTS730(a) == 24 .and. OXGETNUMBEROFDIMENSIONS(a) == 3 .and. OXGETM700(a) == 2)
  call check(OXSETDIMENSIONS(a, dims32, 2) == 0 .and. OXGETN730(a) == 6 .and. OXCALCSINGLESUBSCRIPT(a, 2, [1, 2]) == 11)
  call OXDESTROYARRAY(a)

  a = OXCREATESPARSE730(4_ox_size, 2_ox_size, 3_ox_size, oxREAL) ! 3: sparse index vectors
  call OXCOPYKWINDEXTOPTR730(OXGETJC730(a), [0_ox_size, 1_ox_size, 2_ox_size], 3_ox_size)
  call OXCOPYKWINDEXTOPTR(OXGETIR730(a), [3_ox_size, 0_ox_size], 2)
  call OXCOPYPTRTOKWINDEX(OXGETJC730(a), jc, 3)
  call check(OXISSPARSE(a) == 1 .and. OXGETNZMAX730(a) == 3 .and. jc(3) == 2 .and. OXGETSCALAR(a) == 0)

  names = ['left  ', 'right '] ! 4 and 5: structs and cells
  s = OXCREATESTRUCTMATRIX730(1_ox_size, 2_ox_size, 2, names)
  call OXSETFIELD730(s, 1_ox_size, 'right', OXCREATEDOUBLESCALAR(3d0))
  call check(OXGETSCALAR(OXGETFIELD(s, 1, 'right   ')) == 3 .and. OXGETFIELDNUMBER(s, 'left') == 0 .and. &
             OXGETFIELDNAMEBYNUMBER(s, 1) == 'right' .and. OXADDFIELD(s, 'third') == 2)
  c = OXCREATECELLMATRIX(1, 2)
  call OXSETCELL(c, 1, s)
  call check(OXGETCELL730(c, 0_ox_size) == 0 .and. OXISSTRUCT(OXGETCELL(c, 1)) == 1)

  a = OXCREATECHARMATRIXFROMSTRINGS(2, names) ! 6: text
  call check(OXGETSTRING(a, text, 6) == 1 .and. text == 'lreifg' .and. OXGETCLASSNAME(a) == 'char' .and. &
             OXISCLASS(a, 'char ') == 1 .and. OXCLASSIDFROMCLASSNAME('uint8') == oxUINT8_CLASS)
  block = OXMALLOC(7) ! 7
  call OXCOPYCHARACTERTOPTR(block, 'ab    ', 6)
  text = 'xxxxxx'
  call OXCOPYPTRTOCHARACTER(block, text, 5)
  call check(text == 'ab   x')
  call OXFREE(block)

  a = OXCREATEDOUBLEMATRIX730(3_ox_size, 1_ox_size, oxCOMPLEX) ! 8 to 13: every copy, there and back
  pr = OXGETPR(a)
  pi = OXGETPI(a)
  call OXCOPYREAL4TOPTR(pr, [1.0, 2.0, 3.0], 3)
  call OXCOPYPTRTOREAL4730(pr, r4, 3_ox_size)
  call OXCOPYREAL8TOPTR730(pr, [4d0, 5d0, 6d0], 3_ox_size)
  call OXCOPYPTRTOREAL8(pr, r8, 3)
  call check(all(r4 == [1, 2, 3]) .and. all(r8 == [4, 5, 6]))
  call OXCOPYINTEGER1TOPTR(pr, [1_c_int8_t, 2_c_int8_t, 3_c_int8_t], 3)
  call OXCOPYPTRTOINTEGER1730(pr, i1, 3_ox_size)
  call OXCOPYINTEGER2TOPTR(pr, [4_c_int16_t, 5_c_int16_t, 6_c_int16_t], 3)
  call OXCOPYPTRTOINTEGER2700(pr, i2, 3)
  call check(all(i1 == [1, 2, 3]) .and. all(i2 == [4, 5, 6]))
  call OXCOPYINTEGER4TOPTR730(pr, [1, 2, 3], 3_ox_size)
  call OXCOPYPTRTOINTEGER4(pr, i4, 3)
  call OXCOPYINTEGER8TOPTR(pr, [4_c_int64_t, 5_c_int64_t, 6_c_int64_t], 3)
  call OXCOPYPTRTOINTEGER8730(pr, i8, 3_ox_size)
  call check(all(i4 == [1, 2, 3]) .and. all(i8 == [4, 5, 6]))
  z16 = [(1d0, 2d0), (3d0, 4d0)]
  call OXCOPYCOMPLEX16TOPTR(pr, pi, z16, 2)
  call OXCOPYPTRTOREAL8(pi, r8, 2)
  call check(OXGETSCALAR(a) == 1 .and. all(r8(:2) == [2, 4]))
  z16 = 0
  call OXCOPYPTRTOCOMPLEX16730(pr, 0_ox_handle, z16, 2_ox_size) ! no imaginary block
  call check(all(z16 == [1, 3]))
  call OXCOPYCOMPLEX8TOPTR730(pr, pi, cmplx([5, 6], [7, 8]), 2_ox_size)
  call OXCOPYPTRTOCOMPLEX8(pr, pi, z8, 2)
  call check(all(z8 == cmplx([5, 6], [7, 8])))

  a = OXCREATEDOUBLEMATRIX(2, 2, oxREAL) ! 14 and 15: the data in place, and numbers
  call assign(a)
  call OXCOPYPTRTOREAL8(OXGETPR(a), r8, 3)
  call check(all(r8 == [1, 2, 3]))
  call check(OXISNAN(OXGETNAN()) == 1 .and. OXISFINITE(OXGETINF()) == 0)

  if (failed == 0 .and. nlhs <= 1 .and. checked /= 15) failed = 100
  plhs(1) = OXCREATEDOUBLESCALAR(real(failed, c_double))

contains

  subroutine check(holds)
    logical, intent(in) :: holds
    checked = checked + 1
    if (.not. holds .and. failed == 0) failed = checked
  end subroutine

  subroutine assign(b)
    integer(ox_handle), intent(in) :: b
    real(c_double), pointer :: x(:, :), y(:)
    x => ox_matrix(b)
    x = reshape([1, 2, 3, 4], [2, 2])
    y => ox_vector(b)
    if (y(4) /= 4) failed = 101
  end subroutine

end subroutine

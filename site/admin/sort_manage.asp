<%@ Component="Ostrakan.Class5" %><% InitFunction1 %><% InitFunction2 %><% InitFunction3 %><html>
<head>
<meta http-equiv="Content-Type" content="text/html; charset=gb2312">
<title>分类管理</title>
<link rel="stylesheet" href="css/style.css" type="text/css">
<script type="text/javascript">
function selectAll(box) {
  var boxes = document.querySelectorAll('input[type=checkbox][name=id]');
  for (var i = 0; i < boxes.length; i++) boxes[i].checked = box.checked;
}
function ticked() {
  var boxes = document.querySelectorAll('input[type=checkbox][name=id]');
  for (var i = 0; i < boxes.length; i++) if (boxes[i].checked) return true;
  return false;
}
function sort_edit(name, parent, id) {
  var f = document.forms['edit'].elements;
  f['sort'].value = name;
  f['sort_id'].value = parent;
  f['id'].value = id;
  document.getElementById('edit_box').style.display = '';
  f['sort'].focus();
}
function sort_delete(id) {
  if (confirm('确定要删除这个分类吗？它下面的二级分类也会一起删除。')) location.href = 'sort_ok.asp?action=del&id=' + id;
}
function check_name(form) {
  if (form.elements['sort'].value.replace(/^ +| +$/g, '') == '') { alert('请输入分类名称！'); form.elements['sort'].focus(); return false; }
  return true;
}
function check_delete() {
  if (!ticked()) { alert('没有选择删除的纪录！'); return false; }
  return confirm('确定要删除选中的分类吗？它们下面的二级分类也会一起删除。');
}
</script>
</head>
<body class="content">
<h3>分类管理 - 一级分类</h3>
<form accept-charset="gb18030" name="add" id="add" method="post" action="sort_ok.asp" onsubmit="return check_name(this)">
<input type="hidden" name="action" value="add">
<input type="hidden" name="sort_id" value="0">
<table class="form">
<tr><th>分类名称：</th><td><input type="text" name="sort" class="input" maxlength="50"> <input type="submit" value="添加一级分类" class="button"> <a href="sort_batch_add.asp">批量添加</a></td></tr>
</table>
</form>
<div id="edit_box" style="display:none">
<form accept-charset="gb18030" name="edit" id="edit" method="post" action="sort_ok.asp" onsubmit="return check_name(this)">
<input type="hidden" name="action" value="edit">
<input type="hidden" name="id" value="">
<input type="hidden" name="sort_id" value="0">
<table class="form">
<tr><th>修改名称：</th><td><input type="text" name="sort" class="input" maxlength="50"> <input type="submit" value="保存修改" class="button"> <input type="button" value="取消" class="button" onclick="document.getElementById('edit_box').style.display='none'"></td></tr>
</table>
</form>
</div>
<form accept-charset="gb18030" name="list" id="list" method="get" action="sort_ok.asp" onsubmit="return check_delete()">
<input type="hidden" name="action" value="alldel">
<div class="categories"><% InitFunction4 %></div>
<p class="batch"><label><input type="checkbox" id="chkall" onclick="selectAll(this)"> 全选</label>
<input type="submit" value="删除选中分类" class="button"></p>
</form>
<p class="hint">点击分类名称管理它的二级分类；删除一级分类时，它下面的二级分类一起删除。</p>
</body>
</html>

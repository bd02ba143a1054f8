<%@ Component="Ostrakan.Class14" %><% InitFunction1 %><% InitFunction2 %><% InitFunction3 %><% InitFunction4 %><html>
<head>
<meta http-equiv="Content-Type" content="text/html; charset=gb2312">
<title>数据搜索</title>
<link rel="stylesheet" href="css/style.css" type="text/css">
<script type="text/javascript">
function db_delete(id) {
  if (confirm('确定要删除这条记录吗？')) location.href = 'db_ok.asp?action=del&id=' + id;
}
function select_all(box) {
  var boxes = box.form.querySelectorAll('input[name=id]');
  for (var i = 0; i < boxes.length; i++) boxes[i].checked = box.checked;
}
</script>
</head>
<body class="content">
<h3>数据搜索</h3>
<form accept-charset="gb18030" name="search" method="get" action="db_search.asp" class="filter">
关键字：<input type="text" name="keyword" id="keyword" maxlength="50" class="input" value="<%= Keyword %>">
<select name="action" id="action">
  <option value="title">标题</option>
  <option value="content">描述</option>
  <option value="url">网址</option>
</select>
<input type="submit" value="搜 索" class="button">
</form>
<form accept-charset="gb18030" name="list" method="get" action="db_ok.asp" onsubmit="return confirm('确定要删除选中的记录吗？')">
<input type="hidden" name="action" value="alldel">
<% InitFunction5 %>
<p class="batch" id="batch"><label><input type="checkbox" onclick="select_all(this)"> 全选</label> <input type="submit" value="删除选中" class="button"></p>
</form>
<script type="text/javascript">
(function () {
  var field = /[?&]action=(title|content|url)(&|$)/.exec(location.search);
  if (field) document.getElementById('action').value = field[1];
  if (!document.querySelector('form[name=list] input[name=id]')) document.getElementById('batch').style.display = 'none';
})();
</script>
</body>
</html>
